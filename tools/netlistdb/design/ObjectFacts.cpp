#include "design/ObjectFacts.h"

#include <DataBase.h>
#include <string_view>

namespace kvr::netlistdb::tool {

std::vector<std::string> rangesOf(std::string_view src)
{
    std::vector<std::string> ranges;
    while (!src.empty()) {
        const std::size_t bar = src.find('|');
        ranges.emplace_back(src.substr(0, bar));
        src.remove_prefix(bar == std::string_view::npos ? src.size() : bar + 1);
    }
    return ranges;
}

std::vector<std::string> sourcesOf(const Verific::DesignObj &object)
{
    if (const char *src = object.GetAttValue("src")) {
        return rangesOf(src);
    }
    const char *file = Verific::LineFile::GetFileName(object.Linefile());
    return file == nullptr
               ? std::vector<std::string>()
               : std::vector{std::string(file) + ":" + std::to_string(Verific::LineFile::GetLineNo(object.Linefile()))};
}

std::vector<std::pair<std::string, std::string>> attributesOf(const Verific::DesignObj &object)
{
    std::vector<std::pair<std::string, std::string>> attributes;
    Verific::MapIter mi;
    Verific::Att *att = nullptr;
    FOREACH_ATTRIBUTE (&object, mi, att) {
        const std::string_view key = att->Key() != nullptr ? att->Key() : "";
        if (key != "src" && key != "hdlname" && key != "scopename") {
            attributes.emplace_back(key, att->Value() != nullptr ? att->Value() : "");
        }
    }
    return attributes;
}

} // namespace kvr::netlistdb::tool
