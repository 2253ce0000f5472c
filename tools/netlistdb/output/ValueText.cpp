#include "output/ValueText.h"

#include "output/Json.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace kvr::netlistdb::tool {

namespace {

struct Texter {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(bool value) const { return value ? "yes" : "no"; }
    std::string operator()(std::uint64_t value) const { return fmt::to_string(value); }
    std::string operator()(std::string_view value) const { return std::string(value); }
    std::string operator()(const std::vector<std::string> *value) const
    {
        return fmt::to_string(fmt::join(*value, " "));
    }
    std::string operator()(const std::vector<std::pair<std::string, std::string>> *value) const
    {
        std::string text;
        for (const auto &[key, each] : *value) {
            text += fmt::format("{}{}={}", text.empty() ? "" : " ", key, each);
        }
        return text;
    }
    std::string operator()(const Json *value) const { return jsonText(*value); }
};

} // namespace

std::string valueText(const Value &value)
{
    return std::visit(Texter{}, value);
}

} // namespace kvr::netlistdb::tool
