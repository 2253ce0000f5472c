#include "search/FullNameExpression.h"

#include "search/FullName.h"

namespace kvr::netlistdb {

void FullNameExpression::enter(const IVDBInstance &instance)
{
    m_instance = &instance;
}

// Left to itself GCC calls the copying of sub-matches, once for every character of a name. Flattening is for release
// builds: it takes seconds to compile there, and minutes with sanitizers.
#if defined(NDEBUG)
[[gnu::flatten]]
#endif
bool FullNameExpression::operator()(const std::string &name)
{
    if (m_instance != nullptr) {
        m_buffer = netNamePrefix(m_instance);
        m_prefixSize = m_buffer.size();
        m_instance = nullptr;
    }
    const std::string *fullName = &name;
    if (m_prefixSize != 0) {
        m_buffer.resize(m_prefixSize);
        m_buffer += name;
        fullName = &m_buffer;
    }
    const char *begin = fullName->data();
    return std::regex_search(begin, begin + fullName->size(), m_match, m_expression, std::regex_constants::match_any);
}

} // namespace kvr::netlistdb
