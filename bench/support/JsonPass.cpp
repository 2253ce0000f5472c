#include "support/JsonPass.h"

#include <simdjson.h>

namespace kvr::netlistdb::bench {
namespace {

namespace ondemand = simdjson::ondemand;

template <typename Value> void visit(Value &&value, JsonPassCounts &counts)
{
    switch (value.type()) {
    case ondemand::json_type::object:
        for (auto field : value.get_object()) {
            ++counts.keys;
            const std::string_view key = field.unescaped_key();
            counts.checksum += key.size();
            visit(field.value().value(), counts);
        }
        break;
    case ondemand::json_type::array:
        for (auto element : value.get_array()) {
            visit(element.value(), counts);
        }
        break;
    case ondemand::json_type::number:
        ++counts.numbers;
        counts.checksum += static_cast<std::uint64_t>(value.get_int64());
        break;
    case ondemand::json_type::string: {
        ++counts.strings;
        const std::string_view text = value.get_string();
        counts.checksum += text.size();
        break;
    }
    default:
        break;
    }
}

} // namespace

JsonPassCounts passOverJson(const std::string &path)
{
    const simdjson::padded_string text = simdjson::padded_string::load(path);
    ondemand::parser parser;
    ondemand::document document = parser.iterate(text);
    JsonPassCounts counts;
    counts.bytes = text.size();
    visit(document, counts);
    return counts;
}

} // namespace kvr::netlistdb::bench
