// Long objects are read window by window, files without the blanks that their lines begin with. Neither shows: not in
// the netlist, and not in what is said about damaged texts.

#include "ReaderTest.h"

#include <simdjson.h>
#include <yosys/NetlistReader.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <random>

namespace yosystest {
namespace {

using kvr::netlistdb::yosys::JsonInput;
using kvr::netlistdb::yosys::ReadError;
using kvr::netlistdb::yosys::readJson;
using kvr::netlistdb::yosys::readJsonText;

constexpr std::size_t WHOLE = std::size_t{1} << 40;

std::string textOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The netlist of @p text as text, or the error; empties the libset.
std::string outcome(std::string text, std::size_t window)
{
    const std::string before = text;
    text.resize(text.size() + simdjson::SIMDJSON_PADDING, '\0');
    std::string result;
    try {
        readJsonText(JsonInput{text.data(), before.size(), text.size(), window}, "design.json", {});
        result = dumpLibset();
    } catch (const ReadError &error) {
        result = error.what();
    }
    text.resize(before.size());
    EXPECT_EQ(text, before) << "the text is not as it was before";
    Verific::Libset::Reset();
    return result;
}

class YosysWindows : public FilesTest {
  protected:
    /// The same as outcome(), of a file with this text.
    std::string outcomeOfFile(const std::string &text) const
    {
        const std::string file = write("design.json", text);
        std::string result;
        try {
            readJson(file);
            result = dumpLibset();
        } catch (const ReadError &error) {
            result = std::string(error.what()).substr(directory().string().size() + 1);
        }
        Verific::Libset::Reset();
        return result;
    }
};

/// Everything that is kept in windows: cells of a type that comes later, of a planned type and of an unknown one,
/// names with and without attributes, escapes, memories.
const std::string SMALL = R"({
  "creator": "nobody",
  "modules": {
    "top": {
      "attributes": {"top": "1", "src": "top.v:1.1-9.9"},
      "ports": {
        "clk": {"direction": "input", "bits": [2]},
        "q": {"direction": "output", "bits": [3, 4]}
      },
      "memories": {
        "ram": {"hide_name": 0, "attributes": {"src": "top.v:3.1-3.9"}, "width": 4, "start_offset": 0, "size": 8},
        "r\"am": {"hide_name": 0, "attributes": {}, "width": 2, "start_offset": 0, "size": 2}
      },
      "cells": {
        "u1": {"hide_name": 0, "type": "later", "parameters": {}, "attributes": {"src": "top.v:4.1-4.9"},
               "port_directions": {"a": "input", "y": "output"}, "connections": {"a": [2], "y": [3]}},
        "$u,2{": {"hide_name": 1, "type": "$dff", "parameters": {"CLK_POLARITY": "1", "WIDTH": "1"}, "attributes": {},
               "port_directions": {"CLK": "input", "D": "input", "Q": "output"},
               "connections": {"CLK": [2], "D": [5], "Q": [4]}},
        "u\\3}": {"hide_name": 0, "type": "unknown", "parameters": {"P": 1}, "attributes": {"keep": "1"},
               "port_directions": {"x": "input"}, "connections": {"x": [6]}}
      },
      "netnames": {
        "clk": {"hide_name": 0, "bits": [2], "attributes": {"src": "top.v:2.1-2.9"}},
        "q": {"hide_name": 0, "bits": [3, 4], "attributes": {"src": "top.v:2.1-2.9", "keep": "1"}},
        "other": {"hide_name": 0, "bits": [4, 5], "attributes": {"src": "top.v:5.1-5.9|top.v:6.1-6.2", "hdlname": "a b"}},
        "$auto\tname": {"hide_name": 1, "bits": [6], "attributes": {}}
      }
    },
    "later": {
      "ports": {"a": {"direction": "input", "bits": [2]}, "y": {"direction": "output", "bits": [3]}},
      "cells": {},
      "netnames": {}
    }
  }
}
)";

TEST_F(YosysWindows, DoNotChangeANetlist)
{
    for (const std::string &text :
         {SMALL, textOf(DESIGNS_DIR "/soc_elaborated.json"), textOf(DESIGNS_DIR "/soc_postmap.json")}) {
        const std::string whole = outcome(text, WHOLE);
        EXPECT_EQ(whole.find("design.json:"), std::string::npos) << whole.substr(0, 200);
        for (const std::size_t window : {std::size_t{0}, std::size_t{1}, std::size_t{150}, std::size_t{4000}}) {
            EXPECT_TRUE(outcome(text, window) == whole) << "windows of " << window << " bytes";
        }
        EXPECT_TRUE(outcomeOfFile(text) == whole) << "from a file";
    }
}

TEST_F(YosysWindows, KeepBlanksInsideATextHoweverTheFileIsReadInBlocks)
{
    const std::string blanks(std::size_t{1} << 20, ' ');
    const std::string text = "{\"modules\":\n  {\"top\": {\"attributes\": {\"a\": \"x" + blanks + "y\"}}}}";
    const std::string whole = outcome(text, WHOLE);
    EXPECT_NE(whole.find(blanks), std::string::npos);
    EXPECT_TRUE(outcomeOfFile(text) == whole);
}

TEST_F(YosysWindows, DoNotChangeWhatIsSaidOfDamagedTexts)
{
    std::mt19937 random(20260814);
    const std::string_view characters = "{}[],:\"\\ \n0x";
    unsigned refused = 0;
    for (int round = 0; round < 1500; ++round) {
        std::string text = SMALL;
        const std::size_t at = random() % text.size();
        switch (random() % 4) {
        case 0:
            text.erase(at, 1 + random() % 3);
            break;
        case 1:
            text.insert(at, 1, characters[random() % characters.size()]);
            break;
        case 2:
            text[at] = characters[random() % characters.size()];
            break;
        default:
            text.resize(at);
            break;
        }
        const std::string whole = outcome(text, WHOLE);
        refused += whole.rfind("design.json: ", 0) == 0 ? 1 : 0;
        EXPECT_EQ(outcome(text, 0), whole) << text;
        EXPECT_EQ(outcomeOfFile(text), whole) << text;
    }
    EXPECT_GT(refused, 500u);
}

} // namespace
} // namespace yosystest
