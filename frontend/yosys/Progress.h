#pragma once

#include "YosysReader.h"

#include <cstddef>
#include <cstdint>

namespace kvr::netlistdb::yosys {

/// Tells the caller about every hundredth of the file, however the parts of the file are ordered, and stops on demand.
class Progress {
  public:
    /// @p options must outlive the object.
    /// @param total  bytes of the file
    Progress(const ReadOptions &options, std::uint64_t total);

    /// Starts to count a part of the file at @p place.
    void begin(std::uint64_t place);
    /// Reading has come to @p place of the part. Throws ReadCancelled when the caller wants no more.
    void at(std::uint64_t place)
    {
        if (place >= m_next) {
            tell(place);
        }
    }
    /// The part ends at @p place.
    void end(std::uint64_t place);
    /// All is read.
    void finish();

  private:
    void tell(std::uint64_t place);
    void report(std::uint64_t done);

    const ReadOptions &m_options;
    std::uint64_t m_total;
    std::uint64_t m_step;
    std::uint64_t m_before = 0; ///< bytes of the finished parts
    std::uint64_t m_due;        ///< the next report
    std::uint64_t m_start = 0;
    std::uint64_t m_next = 0;
};

} // namespace kvr::netlistdb::yosys
