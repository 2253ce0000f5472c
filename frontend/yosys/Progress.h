#pragma once

#include "YosysReader.h"

#include <cstddef>
#include <cstdint>

namespace kvr::netlistdb::yosys {

/// Tells the caller about every hundredth of the file, however the parts of the file are ordered, and stops on demand.
class Progress {
  public:
    /// @p options must outlive the object.
    /// @param textSize  bytes of the text that is read, at most 4 GiB
    /// @param fileSize  bytes of its file, in which the progress counts, at most 4 GiB
    Progress(const ReadOptions &options, std::uint64_t textSize, std::uint64_t fileSize);

    /// Starts to count a part of the file at @p place.
    void begin(const char *place);
    /// Reading has come to @p place of the part. Throws ReadCancelled when the caller wants no more.
    void at(const char *place)
    {
        if (place >= m_next) {
            tell(place);
        }
    }
    /// The part ends at @p place.
    void end(const char *place);
    /// All is read.
    void finish();

  private:
    void tell(const char *place);
    void report(std::uint64_t done);

    const ReadOptions &m_options;
    std::uint64_t m_total;
    std::uint64_t m_fileSize;
    std::uint64_t m_step;
    std::uint64_t m_before = 0; ///< bytes of the finished parts
    std::uint64_t m_due;        ///< the next report
    const char *m_start = nullptr;
    const char *m_next = nullptr;
};

} // namespace kvr::netlistdb::yosys
