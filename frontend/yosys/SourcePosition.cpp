#include "SourcePosition.h"

#include <charconv>

namespace kvr::netlistdb::yosys {

namespace {

struct Range {
    std::string_view file;
    unsigned line = 0;
};

/// Splits `file:line.column-…`; the file may hold colons itself. Answers false when it is no range.
bool parseRange(std::string_view text, Range &range)
{
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos || colon == 0) {
        return false;
    }
    const char *end = text.data() + text.size();
    const auto [behind, error] = std::from_chars(text.data() + colon + 1, end, range.line);
    if (error != std::errc() || (behind != end && *behind != '.' && *behind != '-')) {
        return false;
    }
    range.file = text.substr(0, colon);
    return true;
}

} // namespace

Verific::linefile_type SourcePositions::encode(std::string_view src)
{
    Range range;
    while (!src.empty()) {
        const std::size_t bar = src.find('|');
        if (parseRange(src.substr(0, bar), range)) {
            if (m_file != range.file) {
                m_file = range.file;
            }
            return Verific::LineFile::EncodeLineFile(m_file.c_str(), range.line);
        }
        src.remove_prefix(bar == std::string_view::npos ? src.size() : bar + 1);
    }
    return 0;
}

} // namespace kvr::netlistdb::yosys
