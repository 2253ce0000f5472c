// Damaged files: whatever is cut off or changed, the answer is a netlist or a ReadError, and an error leaves nothing
// behind.

#include "ReaderTest.h"

#include <random>

namespace yosystest {
namespace {

/// A file with every construct that the reader knows.
constexpr const char *DESIGN = R"({
  "creator": "Yosys 0.23", "modules": {
    "box": {"attributes": {"blackbox": "00000000000000000000000000000001", "src": "c.v:1.1-2.2"},
      "ports": {"C": {"direction": "input", "bits": [2]}, "B": {"direction": "inout", "offset": 2, "upto": 1, "bits": [3, 4]}},
      "cells": {}, "netnames": {"C": {"hide_name": 0, "bits": [2], "attributes": {"CLK": "TRUE"}}}},
    "top": {"attributes": {"top": 1}, "parameter_default_values": {"W": "0101 "},
      "ports": {"d": {"direction": "input", "bits": [2, 3]}, "q": {"direction": "output", "bits": [4, "1"]}},
      "memories": {"m": {"hide_name": 0, "attributes": {}, "width": 8, "start_offset": 0, "size": 4}},
      "cells": {
        "u\\1": {"hide_name": 0, "type": "box", "parameters": {"P": "\"x\"", "N": -3},
          "attributes": {"src": "t.v:3.1|t.v:4.1", "protected": 1},
          "port_directions": {"C": "input", "B": "inout"}, "connections": {"C": [2], "B": [7, "x"]}},
        "$2": {"hide_name": 1, "type": "$dff", "parameters": {"WIDTH": 2},
          "port_directions": {"CLK": "input", "D": "input", "Q": "output"},
          "connections": {"CLK": [3], "D": [7, "0"], "Q": [4, "z"]}},
        "u3": {"type": "ip", "port_directions": {"A": "input"}, "connections": {"A": [2147483647]}}},
      "netnames": {"d": {"bits": [2, 3], "attributes": {"src": "t.v:1.1"}},
        "n.v": {"hide_name": 0, "bits": [7, 7], "offset": -1, "attributes": {"keep": "1", "src": "t.v:2.1"}},
        "$3": {"hide_name": 1, "bits": [7], "attributes": {}}}}}})";

class YosysDamagedInput : public ReaderTest {
  protected:
    /// Returns true when @p text became a netlist; fails the test when an error left something behind.
    static bool isRead(const std::string &text)
    {
        try {
            readText(text);
            Verific::Libset::Reset();
            return true;
        } catch (const kvr::netlistdb::yosys::ReadError &error) {
            EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << text;
            EXPECT_EQ(Verific::Libset::Global()->GetLibraries()->Size(), 0u) << text;
            return false;
        }
    }
};

TEST_F(YosysDamagedInput, WholeIsRead)
{
    EXPECT_TRUE(isRead(DESIGN));
}

TEST_F(YosysDamagedInput, CutOffAnywhereIsRefused)
{
    const std::string whole = DESIGN;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(isRead(whole.substr(0, length))) << length;
    }
}

TEST_F(YosysDamagedInput, WithAnyByteChangedIsReadOrRefused)
{
    const std::string whole = DESIGN;
    unsigned refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const char byte : {'"', '\\', '{', '}', '[', ']', ',', ':', '0', '-', ' ', 'a', '\0', '\xFF'}) {
            std::string damaged = whole;
            damaged[at] = byte;
            refused += isRead(damaged) ? 0 : 1;
        }
    }
    EXPECT_GT(refused, whole.size());
}

TEST_F(YosysDamagedInput, WithPartsRemovedDoubledOrSwappedIsReadOrRefused)
{
    const std::string whole = DESIGN;
    std::mt19937 random(20240501);
    const auto below = [&](std::size_t bound) { return static_cast<std::size_t>(random() % bound); };
    for (int round = 0; round < 3000; ++round) {
        std::string damaged = whole;
        for (std::size_t change = below(4) + 1; change > 0; --change) {
            const std::size_t at = below(damaged.size());
            const std::size_t length = std::min(below(40) + 1, damaged.size() - at);
            const std::string part = damaged.substr(at, length);
            switch (below(3)) {
            case 0:
                damaged.erase(at, length);
                break;
            case 1:
                damaged.insert(below(damaged.size()), part);
                break;
            default:
                damaged.erase(at, length);
                damaged.insert(below(damaged.size() + 1), part);
            }
        }
        isRead(damaged);
    }
}

} // namespace
} // namespace yosystest
