#include "output/PathsWriter.h"

#include "output/OutputStream.h"
#include "output/ValueText.h"

#include <algorithm>
#include <cstring>

namespace kvr::netlistdb::tool {

void PathsWriter::begin(const ResultHead &head)
{
    const auto isPath = [](const Column &column) {
        return column.key != nullptr && std::strcmp(column.key, "path") == 0;
    };
    m_path =
        static_cast<std::size_t>(std::find_if(head.columns.begin(), head.columns.end(), isPath) - head.columns.begin());
}

void PathsWriter::row(const Row &row)
{
    m_line = valueText(row.at(m_path));
    m_line += m_line.empty() ? ".\n" : "\n";
    m_stream.write(m_line);
    m_stream.tick();
}

void PathsWriter::end(Ending /*ending*/, const std::vector<Fact> & /*facts*/) {}

void PathsWriter::tick()
{
    m_stream.tick();
}

} // namespace kvr::netlistdb::tool
