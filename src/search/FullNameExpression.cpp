#include "search/FullNameExpression.h"

#include "search/FullName.h"

namespace kvr::netlistdb {

void FullNameExpression::enter(const IVDBInstance &instance)
{
    m_instance = &instance;
}

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
    return m_expression.isFoundIn(*fullName);
}

} // namespace kvr::netlistdb
