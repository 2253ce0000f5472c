#include "base/Terminal.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>
#include <unistd.h>

namespace kvr::netlistdb::tool {

namespace {

bool isControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

std::string_view environment(const char *name)
{
    const char *value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

bool isDumbTerminal()
{
    return environment("TERM") == "dumb";
}

bool useColor(When when, int descriptor)
{
    if (when != When::Auto) {
        return when == When::Always;
    }
    return environment("NO_COLOR").empty() && !isDumbTerminal() && isatty(descriptor) != 0;
}

std::string printable(const std::string &text)
{
    if (std::none_of(text.begin(), text.end(), isControl)) {
        return text;
    }
    std::string result;
    for (const char c : text) {
        if (c == '\n') {
            result += "\\n";
        } else if (c == '\t') {
            result += "\\t";
        } else if (isControl(c)) {
            result += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
        } else {
            result += c;
        }
    }
    return result;
}

} // namespace kvr::netlistdb::tool
