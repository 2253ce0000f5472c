#pragma once

#include "output/Value.h"

#include <memory>

namespace kvr::netlistdb::tool {

class OutputStream;

enum class Format { Table, JsonDocument, JsonLines, Csv };

/// How a column looks in a table.
enum class Look { Plain, Name, Dim };

/// One column of a result.
struct Column {
    const char *key;   ///< in JSON and CSV; null: in tables only
    const char *title; ///< in tables; null: not in tables
    Look look = Look::Plain;
    bool number = false; ///< right-aligned in tables
    unsigned width = 0;  ///< least width in tables; 0 waits for the first rows to find out
};

/// The head of a result.
struct ResultHead {
    const char *command; ///< names the format
    std::vector<Fact> facts;
    std::vector<Column> columns;
};

/// Why a result ends where it does.
enum class Ending { Complete, Limit, Interrupted };

/// Writes a result as it comes about: begin, any number of rows, end.
class ResultWriter {
  public:
    virtual ~ResultWriter();
    virtual void begin(const ResultHead &head) = 0;
    virtual void row(const Row &row) = 0;
    virtual void end(Ending ending, const std::vector<Fact> &facts) = 0;
    /// Called between rows: shows the rows so far when the last ones are a while old.
    virtual void tick() = 0;
    /// True when columns without key are shown and those without title are not.
    virtual bool isTable() const { return false; }
};

/// @p stream must outlive the writer.
std::unique_ptr<ResultWriter> makeResultWriter(Format format, OutputStream &stream, bool color);

} // namespace kvr::netlistdb::tool
