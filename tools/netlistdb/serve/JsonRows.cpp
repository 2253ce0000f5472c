#include "serve/JsonRows.h"

#include <utility>

namespace kvr::netlistdb::tool {

JsonRows::JsonRows(std::initializer_list<const char *> keys, std::size_t count, std::function<Json(std::size_t)> rowAt)
    : m_count(count), m_rowAt(std::move(rowAt))
{
    for (const char *key : keys) {
        m_columns.push_back({key, nullptr});
    }
}

JsonRows::JsonRows(std::initializer_list<const char *> keys, Json rows)
    : JsonRows(keys, rows.size(), [rows](std::size_t number) { return rows[number]; })
{
}

bool JsonRows::step(ResultWriter &writer)
{
    if (m_next == m_count) {
        return false;
    }
    const Json json = m_rowAt(m_next++);
    Row row;
    for (const Column &column : m_columns) {
        row.emplace_back(&json.at(column.key));
    }
    writer.row(row);
    return true;
}

} // namespace kvr::netlistdb::tool
