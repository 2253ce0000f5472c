#pragma once

#include "output/ResultWriter.h"

#include <vector>

namespace kvr::netlistdb::tool {

/// Rows that are made one step after the other, so that whoever asks for them may stop, and go on later.
class RowSource {
  public:
    virtual ~RowSource() = default;
    virtual std::vector<Column> columns() const = 0;
    /// Takes a short step, in which any number of rows may be written. @p writer is the same in every step. Returns
    /// false when there is nothing more.
    virtual bool step(ResultWriter &writer) = 0;
};

} // namespace kvr::netlistdb::tool
