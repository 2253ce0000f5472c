#include "BitTable.h"

namespace kvr::netlistdb::yosys {

BitTable::Entry &BitTable::grow(Bit bit)
{
    m_dense.resize(std::size_t{bit} + 1);
    return m_dense[bit];
}

} // namespace kvr::netlistdb::yosys
