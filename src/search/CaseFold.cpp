#include "search/CaseFold.h"

#include <cctype>
#include <cstddef>

namespace kvr::netlistdb {

CaseFold CaseFold::ofCLibrary()
{
    CaseFold fold;
    for (std::size_t byte = 0; byte < fold.m_lower.size(); ++byte) {
        fold.m_lower[byte] = static_cast<char>(std::tolower(static_cast<int>(byte)));
    }
    return fold;
}

CaseFold CaseFold::ofLocale(const std::locale &locale)
{
    CaseFold fold;
    for (std::size_t byte = 0; byte < fold.m_lower.size(); ++byte) {
        fold.m_lower[byte] = static_cast<char>(static_cast<unsigned char>(byte));
    }
    std::use_facet<std::ctype<char>>(locale).tolower(fold.m_lower.data(), fold.m_lower.data() + fold.m_lower.size());
    return fold;
}

void CaseFold::fold(std::string_view text, std::string &result) const
{
    result.resize(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        result[i] = m_lower[static_cast<unsigned char>(text[i])];
    }
}

} // namespace kvr::netlistdb
