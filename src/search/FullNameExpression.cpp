#include "search/FullNameExpression.h"

#include "search/FullName.h"

namespace kvr::netlistdb {

void FullNameExpression::enter(const IVDBInstance &instance)
{
    m_instance = &instance;
}

bool FullNameExpression::operator()(std::string_view name)
{
    if (m_instance != nullptr) {
        m_buffer = netNamePrefix(m_instance);
        m_prefixSize = m_buffer.size();
        m_instance = nullptr;
    }
    if (m_prefixSize == 0) {
        return m_expression.isFoundIn(name);
    }
    m_buffer.resize(m_prefixSize);
    m_buffer += name;
    return m_expression.isFoundIn(m_buffer);
}

} // namespace kvr::netlistdb
