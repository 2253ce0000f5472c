#include "serve/RowBuffer.h"

#include "output/JsonRow.h"

namespace kvr::netlistdb::tool {

void RowBuffer::row(const Row &row)
{
    if (m_skipped > 0) {
        --m_skipped;
        return;
    }
    m_rows.emplace_back();
    appendObject(m_rows.back(), m_columns, row);
}

} // namespace kvr::netlistdb::tool
