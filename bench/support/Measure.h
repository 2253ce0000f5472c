#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

namespace kvr::netlistdb::bench {

/// Seconds since it was made or last read.
class Stopwatch {
  public:
    double lap()
    {
        const auto now = std::chrono::steady_clock::now();
        const std::chrono::duration<double> elapsed = now - m_start;
        m_start = now;
        return elapsed.count();
    }

  private:
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

/// Seconds of processor time that the process has used since it was made or last read: steadier than a Stopwatch on a
/// machine that has other work.
class ProcessorStopwatch {
  public:
    double lap();

  private:
    static double now();
    double m_start = now();
};

/// The middle value (of an even number the upper of the two); 0 of nothing.
double median(std::vector<double> values);

/// Bytes that the process has allocated with `malloc` and not freed.
std::size_t heapBytes();
/// Bytes of memory that the process holds, wherever they come from: resident pages that are no file's. What is free in
/// the heap is given back to the system first.
std::size_t residentBytes();
/// Largest resident size of the process so far, in bytes.
std::size_t peakBytes();

} // namespace kvr::netlistdb::bench
