#include "output/CsvWriter.h"

#include "output/OutputStream.h"
#include "output/ValueText.h"

namespace kvr::netlistdb::tool {

namespace {

void appendField(std::string &line, std::string_view text)
{
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        line += text;
        return;
    }
    line += '"';
    for (const char c : text) {
        if (c == '"') {
            line += '"';
        }
        line += c;
    }
    line += '"';
}

} // namespace

void CsvWriter::begin(const ResultHead &head)
{
    const char *separator = "";
    for (const Column &column : head.columns) {
        m_shown.push_back(column.key != nullptr);
        if (column.key != nullptr) {
            m_line += separator;
            appendField(m_line, column.key);
            separator = ",";
        }
    }
    m_line += '\n';
    m_stream.write(m_line);
}

void CsvWriter::row(const Row &row)
{
    m_line.clear();
    const char *separator = "";
    for (std::size_t at = 0; at < row.size(); ++at) {
        if (m_shown[at]) {
            m_line += separator;
            appendField(m_line, valueText(row[at]));
            separator = ",";
        }
    }
    m_line += '\n';
    m_stream.write(m_line);
    m_stream.tick();
}

void CsvWriter::end(Ending /*ending*/, const std::vector<Fact> & /*facts*/) {}

void CsvWriter::tick()
{
    m_stream.tick();
}

} // namespace kvr::netlistdb::tool
