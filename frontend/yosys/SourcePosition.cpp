#include "SourcePosition.h"

#include <algorithm>
#include <charconv>

namespace kvr::netlistdb::yosys {

namespace {

/// Splits `file:line.column-…`; the file may hold colons itself. Returns false when it is no range.
bool parseRange(std::string_view text, SourceRange &range)
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

std::size_t segmentsOf(std::string_view hdlName)
{
    return hdlName.empty() ? 0 : static_cast<std::size_t>(std::count(hdlName.begin(), hdlName.end(), ' ')) + 1;
}

bool ownRange(std::string_view src, std::size_t segments, Innermost innermost, SourceRange &range)
{
    const std::size_t count = static_cast<std::size_t>(std::count(src.begin(), src.end(), '|')) + 1;
    const std::size_t own = count == segments ? count / 2 : innermost == Innermost::Yes ? count - 1 : 0;
    bool found = false;
    std::size_t at = 0;
    for (std::string_view rest = src; !rest.empty() && (at <= own || !found); ++at) {
        const std::size_t bar = rest.find('|');
        SourceRange each;
        if (parseRange(rest.substr(0, bar), each)) {
            range = each;
            found = true;
        }
        rest.remove_prefix(bar == std::string_view::npos ? rest.size() : bar + 1);
    }
    return found;
}

Verific::linefile_type SourcePositions::encode(std::string_view src, std::size_t segments, Innermost innermost)
{
    SourceRange range;
    if (!ownRange(src, segments, innermost, range)) {
        return 0;
    }
    if (m_file != range.file) {
        m_file = range.file;
    }
    return Verific::LineFile::EncodeLineFile(m_file.c_str(), range.line);
}

} // namespace kvr::netlistdb::yosys
