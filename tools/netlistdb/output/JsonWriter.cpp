#include "output/JsonWriter.h"

#include "output/JsonRow.h"
#include "output/OutputStream.h"

namespace kvr::netlistdb::tool {

namespace {

/// The members of @p object without the braces around them.
std::string members(const Json &object)
{
    const std::string text = jsonText(object);
    return text.substr(1, text.size() - 2);
}

} // namespace

void JsonWriter::begin(const ResultHead &head)
{
    m_columns = head.columns;
    Json object = jsonHead(head.command);
    for (const Fact &fact : head.facts) {
        object[fact.key] = jsonOf(fact.value);
    }
    if (m_lines) {
        m_stream.write(jsonText(object));
        m_stream.write("\n");
    } else {
        m_stream.write("{" + members(object) + ",\n\"results\":[");
    }
}

void JsonWriter::row(const Row &row)
{
    m_text = m_lines || m_first ? "" : ",";
    m_text += m_lines ? "" : "\n";
    m_first = false;
    appendObject(m_text, m_columns, row);
    m_text += m_lines ? "\n" : "";
    m_stream.write(m_text);
    m_stream.tick();
}

void JsonWriter::end(Ending ending, const std::vector<Fact> &facts)
{
    Json object = Json::object();
    for (const Fact &fact : facts) {
        object[fact.key] = jsonOf(fact.value);
    }
    object["ending"] = nameOf(ending);
    m_stream.write(m_lines ? jsonText(object) + "\n" : "\n],\n" + members(object) + "}\n");
}

void JsonWriter::tick()
{
    m_stream.tick();
}

} // namespace kvr::netlistdb::tool
