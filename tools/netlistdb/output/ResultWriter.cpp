#include "output/ResultWriter.h"

#include "output/CsvWriter.h"
#include "output/JsonWriter.h"
#include "output/TableWriter.h"

namespace kvr::netlistdb::tool {

ResultWriter::~ResultWriter() = default;

std::unique_ptr<ResultWriter> makeResultWriter(Format format, OutputStream &stream, bool color)
{
    switch (format) {
    case Format::JsonDocument:
        return std::make_unique<JsonWriter>(stream, false);
    case Format::JsonLines:
        return std::make_unique<JsonWriter>(stream, true);
    case Format::Csv:
        return std::make_unique<CsvWriter>(stream);
    case Format::Table:
        break;
    }
    return std::make_unique<TableWriter>(stream, color);
}

} // namespace kvr::netlistdb::tool
