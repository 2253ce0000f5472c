#include "output/JsonRow.h"

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

void append(std::string &json, const Value &value)
{
    if (const auto *text = std::get_if<std::string_view>(&value)) {
        appendText(json, *text);
    } else {
        json += jsonText(jsonOf(value));
    }
}

} // namespace

Json jsonOf(const Value &value)
{
    return std::visit(Converter{}, value);
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

void appendObject(std::string &json, const std::vector<Column> &columns, const Row &row)
{
    char separator = '{';
    for (std::size_t at = 0; at < row.size(); ++at) {
        if (columns[at].key != nullptr) {
            json += separator;
            appendText(json, columns[at].key);
            json += ':';
            append(json, row[at]);
            separator = ',';
        }
    }
    json += '}';
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

} // namespace kvr::netlistdb::tool
