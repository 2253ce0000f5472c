#include "search/CaseFold.h"

#include <algorithm>
#include <cctype>

namespace kvr::netlistdb {

void CaseFold::fold(std::string_view text, std::string &result)
{
    if (m_facet != nullptr) {
        result = text;
        m_facet->tolower(result.data(), result.data() + result.size());
        return;
    }
    result.resize(text.size());
    if (m_hasTable) {
        std::transform(text.begin(), text.end(), result.begin(),
                       [this](char c) { return m_table[static_cast<unsigned char>(c)]; });
        return;
    }
    std::transform(text.begin(), text.end(), result.begin(),
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    m_bytesFolded += text.size();
    if (m_bytesFolded > m_table.size()) {
        makeTable();
    }
}

void CaseFold::makeTable()
{
    for (std::size_t byte = 0; byte < m_table.size(); ++byte) {
        m_table[byte] = static_cast<char>(std::tolower(static_cast<int>(byte)));
    }
    m_hasTable = true;
}

} // namespace kvr::netlistdb
