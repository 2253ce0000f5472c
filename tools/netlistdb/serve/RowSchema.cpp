#include "serve/RowSchema.h"

#include <map>
#include <stdexcept>
#include <string_view>

namespace kvr::netlistdb::tool {

namespace {

enum class Kind {
    Text,
    TextOrNull,
    Number,
    NumberOrNull,
    NumberOrObject,
    NumberOrText,
    NumberOrTextOrNull,
    Flag,
    Texts,
    Object,
    ObjectOrNull,
    Objects
};

Json schemaOf(Kind kind)
{
    switch (kind) {
    case Kind::Text:
        return {{"type", "string"}};
    case Kind::TextOrNull:
        return {{"type", {"string", "null"}}};
    case Kind::Number:
        return {{"type", "integer"}};
    case Kind::NumberOrNull:
        return {{"type", {"integer", "null"}}};
    case Kind::NumberOrObject:
        return {{"type", {"integer", "object"}}};
    case Kind::NumberOrText:
        return {{"type", {"integer", "string"}}};
    case Kind::NumberOrTextOrNull:
        return {{"type", {"integer", "string", "null"}}};
    case Kind::Flag:
        return {{"type", "boolean"}};
    case Kind::Texts:
        return {{"type", "array"}, {"items", {{"type", "string"}}}};
    case Kind::ObjectOrNull:
        return {{"type", {"object", "null"}}};
    case Kind::Objects:
        return {{"type", "array"}, {"items", {{"type", "object"}}}};
    case Kind::Object:
        break;
    }
    return {{"type", "object"}};
}

/// A column is of one kind, whichever result it stands in.
const std::map<std::string_view, Kind> &kinds()
{
    static const std::map<std::string_view, Kind> KINDS = {
        {"aliases", Kind::Texts},
        {"also", Kind::Texts},
        {"attributes", Kind::Object},
        {"bits", Kind::NumberOrText},
        {"buses", Kind::Object},
        {"capture", Kind::Text},
        {"captured_by", Kind::Object},
        {"cell", Kind::TextOrNull},
        {"cells", Kind::Number},
        {"cells_by_type", Kind::Object},
        {"class", Kind::Text},
        {"clock", Kind::TextOrNull},
        {"clocks", Kind::Texts},
        {"control", Kind::TextOrNull},
        {"definitions", Kind::Number},
        {"depth", Kind::Number},
        {"drivers", Kind::Objects},
        {"edge", Kind::TextOrNull},
        {"edges", Kind::TextOrNull},
        {"effect", Kind::Text},
        {"evidence", Kind::TextOrNull},
        {"instead", Kind::TextOrNull},
        {"file", Kind::TextOrNull},
        {"from", Kind::Text},
        {"from_cell", Kind::TextOrNull},
        {"from_type", Kind::TextOrNull},
        {"grade", Kind::Text},
        {"grades", Kind::Texts},
        {"instance", Kind::Text},
        {"instances", Kind::Number},
        {"inverted", Kind::Flag},
        {"kept", Kind::Flag},
        {"kind", Kind::Text},
        {"launch", Kind::TextOrNull},
        {"library", Kind::Text},
        {"line", Kind::NumberOrNull},
        {"load_count", Kind::NumberOrNull},
        {"loads", Kind::Objects},
        {"logic", Kind::Flag},
        {"match", Kind::TextOrNull},
        {"matched", Kind::TextOrNull},
        {"meets", Kind::TextOrNull},
        {"module", Kind::TextOrNull},
        {"name", Kind::Text},
        {"net", Kind::Text},
        {"nets", Kind::NumberOrObject},
        {"networks", Kind::Texts},
        {"parents", Kind::Texts},
        {"path", Kind::Text},
        {"pin", Kind::Text},
        {"ports", Kind::Number},
        {"post_map", Kind::Texts},
        {"reached_by", Kind::Texts},
        {"reaches", Kind::Texts},
        {"reason", Kind::TextOrNull},
        {"reasons", Kind::Texts},
        {"registers", Kind::Number},
        {"root", Kind::Text},
        {"safe", Kind::Number},
        {"sentence", Kind::Text},
        {"several_sources", Kind::Flag},
        {"severity", Kind::Text},
        {"signals", Kind::Number},
        {"sources", Kind::Texts},
        {"stages", Kind::Number},
        {"to", Kind::Text},
        {"to_cell", Kind::Text},
        {"to_type", Kind::Text},
        {"unsafe", Kind::Number},
        {"user_declared", Kind::Flag},
        {"user_module", Kind::TextOrNull},
        {"verdict", Kind::Text},
        {"waived", Kind::NumberOrTextOrNull},
        {"warning", Kind::Number},
        {"width", Kind::NumberOrNull},
        {"why", Kind::ObjectOrNull},
        {"wires", Kind::Number},
    };
    return KINDS;
}

} // namespace

Json schemaOfRow(std::initializer_list<const char *> keys)
{
    Json properties = Json::object();
    for (const char *key : keys) {
        properties[key] = schemaOf(kinds().at(key));
    }
    return {{"type", "object"}, {"properties", properties}};
}

} // namespace kvr::netlistdb::tool
