#pragma once

#include "output/Json.h"
#include "output/RowSource.h"

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <vector>

namespace kvr::netlistdb::tool {

/// Rows that are JSON objects, made one by one. An object has a member for each column, and may have more.
class JsonRows : public RowSource {
  public:
    /// @param rowAt  the object of the row with this number, below @p count; called once for each, in their order
    JsonRows(std::initializer_list<const char *> keys, std::size_t count, std::function<Json(std::size_t)> rowAt);
    /// The objects of the array @p rows.
    JsonRows(std::initializer_list<const char *> keys, Json rows);

    std::vector<Column> columns() const override { return m_columns; }
    bool step(ResultWriter &writer) override;

  private:
    std::vector<Column> m_columns;
    std::size_t m_count;
    std::function<Json(std::size_t)> m_rowAt;
    std::size_t m_next = 0;
};

} // namespace kvr::netlistdb::tool
