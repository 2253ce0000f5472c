#include "support/Measure.h"

#include <malloc.h>
#include <sys/resource.h>

#include <algorithm>
#include <ctime>
#include <fstream>
#include <stdexcept>
#include <string>

namespace kvr::netlistdb::bench {

double ProcessorStopwatch::now()
{
    struct timespec time {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double ProcessorStopwatch::lap()
{
    const double time = now();
    const double elapsed = time - m_start;
    m_start = time;
    return elapsed;
}

double median(std::vector<double> values)
{
    if (values.empty()) {
        return 0;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::size_t heapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

std::size_t residentBytes()
{
    malloc_trim(0);
    std::ifstream file("/proc/self/smaps_rollup");
    std::string word;
    while (file >> word) {
        std::size_t kibibytes = 0;
        if (word == "Anonymous:" && file >> kibibytes) {
            return kibibytes * 1024;
        }
    }
    throw std::runtime_error("/proc/self/smaps_rollup has no line 'Anonymous:'");
}

std::size_t peakBytes()
{
    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

} // namespace kvr::netlistdb::bench
