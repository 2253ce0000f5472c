#include "output/JsonWriter.h"

#include "output/Json.h"
#include "output/OutputStream.h"

#include <algorithm>

namespace kvr::netlistdb::tool {

namespace {

struct Converter {
    Json operator()(std::monostate) const { return nullptr; }
    Json operator()(bool value) const { return value; }
    Json operator()(std::uint64_t value) const { return value; }
    Json operator()(std::string_view value) const { return value; }
    Json operator()(const std::vector<std::string> *value) const { return *value; }
    Json operator()(const std::vector<std::pair<std::string, std::string>> *value) const
    {
        Json object = Json::object();
        for (const auto &[key, each] : *value) {
            object[key] = each;
        }
        return object;
    }
    Json operator()(const Json *value) const { return *value; }
};

Json convert(const Value &value)
{
    return std::visit(Converter{}, value);
}

const char *nameOf(Ending ending)
{
    switch (ending) {
    case Ending::Limit:
        return "limit";
    case Ending::Interrupted:
        return "interrupted";
    case Ending::Complete:
        break;
    }
    return "complete";
}

/// Rows come by the million, and most texts in them need no escape.
void appendText(std::string &json, std::string_view text)
{
    const auto isPlain = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x20 && byte < 0x7f && byte != '"' && byte != '\\';
    };
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        json += '"';
        json += text;
        json += '"';
    } else {
        json += jsonText(Json(text));
    }
}

void append(std::string &json, const Value &value)
{
    if (const auto *text = std::get_if<std::string_view>(&value)) {
        appendText(json, *text);
    } else {
        json += jsonText(convert(value));
    }
}

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
        object[fact.key] = convert(fact.value);
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
    char separator = '{';
    for (std::size_t at = 0; at < row.size(); ++at) {
        if (m_columns[at].key != nullptr) {
            m_text += separator;
            appendText(m_text, m_columns[at].key);
            m_text += ':';
            append(m_text, row[at]);
            separator = ',';
        }
    }
    m_text += m_lines ? "}\n" : "}";
    m_stream.write(m_text);
    m_stream.tick();
}

void JsonWriter::end(Ending ending, const std::vector<Fact> &facts)
{
    Json object = Json::object();
    for (const Fact &fact : facts) {
        object[fact.key] = convert(fact.value);
    }
    object["ending"] = nameOf(ending);
    m_stream.write(m_lines ? jsonText(object) + "\n" : "\n],\n" + members(object) + "}\n");
}

void JsonWriter::tick()
{
    m_stream.tick();
}

} // namespace kvr::netlistdb::tool
