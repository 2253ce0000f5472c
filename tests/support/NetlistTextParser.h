#pragma once

// The parsed form of the text that NetlistText.h describes.

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace testsupport {

/// A name, or none (a null name).
using Name = std::optional<std::string>;

struct Traits {
    std::vector<std::pair<std::string, Name>> attributes;
    std::vector<std::pair<std::string, std::string>> parameters;
    std::vector<std::pair<std::string, std::string>> settings; ///< clock, type, input, library, view
    std::string file;
    unsigned line = 0;
    bool isProtected = false;
    bool isClock = false;
    bool isLoose = false;
    bool isBlackBox = false;
    bool isPlain = false;

    /// Value of a setting, or null.
    const std::string *setting(std::string_view key) const;
};

struct Bounds {
    int left;
    int right;
};

struct PortText {
    std::string direction;
    std::optional<Bounds> bounds;
    Name name;
    Traits traits;
};

/// What a pin is connected to: one name, or a list in braces; no name leaves the bit open.
struct Value {
    bool isList = false;
    std::vector<Name> names;
};

struct Statement {
    enum Kind { NET, RAM, BUS, CONNECT, INSTANCE };
    Kind kind = NET;
    Name name; ///< of the object; the port of CONNECT
    unsigned bits = 0;
    Bounds bounds{0, 0};
    std::optional<Value> value; ///< of BUS and CONNECT
    Name cell;                  ///< of INSTANCE, none for "?"
    std::vector<std::pair<std::string, Value>> pins;
    Traits traits;
    unsigned line = 0;
};

struct Unit {
    std::string kind;
    std::string name;
    std::vector<PortText> ports;
    Traits traits;
    std::vector<Statement> statements;
    unsigned line = 0;
};

/// @throws std::invalid_argument "netlist text, line N: ..."
std::vector<Unit> parseNetlistText(std::string_view text);

/// Throws that error.
[[noreturn]] void netlistTextError(unsigned line, const std::string &message);

} // namespace testsupport
