#pragma once

#include "JsonText.h"
#include "YosysReader.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace kvr::netlistdb::yosys {

/// Tells the caller about every hundredth of the file, however the parts of the file are ordered, and stops on demand.
class Progress {
  public:
    /// @p options must outlive the object.
    /// @param total  bytes of the file
    Progress(const ReadOptions &options, std::uint64_t total);

    /// JsonText::eachFieldOf() for a part of the file that counts. Throws ReadCancelled when the caller wants no more.
    template <typename Visit> void eachFieldOf(JsonText &text, const Section &section, Visit &&visit)
    {
        std::optional<std::uint64_t> end;
        text.eachFieldOf(section, [&](std::string_view raw, json::value &value) {
            const std::uint64_t place = text.placeOf(raw.data());
            if (!end) {
                begin(place);
            }
            end = place;
            if (place >= m_next) {
                tell(place);
            }
            visit(raw, value);
        });
        if (end) {
            finishPart(*end);
        }
    }
    /// All is read.
    void finish();

  private:
    void begin(std::uint64_t place);
    void finishPart(std::uint64_t end);
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
