// Long objects are read window by window, those of indented files straight from the file. Neither shows: not in the
// netlist, and hardly in what is said about damaged texts: which of several faults is met first may differ.

#include "ReaderTest.h"
#include "tests/support/RandomInputs.h"

#include <simdjson.h>
#include <yosys/NetlistReader.h>

#include <array>
#include <cctype>
#include <cstdint>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <vector>

namespace yosystest {
namespace {

using kvr::netlistdb::yosys::JsonInput;
using kvr::netlistdb::yosys::ReadError;
using kvr::netlistdb::yosys::ReadFault;
using kvr::netlistdb::yosys::readJsonFile;
using kvr::netlistdb::yosys::readJsonText;
using kvr::netlistdb::yosys::ShortText;

constexpr int ROUNDS = static_cast<int>(testsupport::randomInputs(1500));
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

/// @p text with a line for every field of an object, indented by two blanks for every level, as yosys does it;
/// @p indent(level) may say otherwise.
std::string indented(const std::string &text, const std::function<unsigned(unsigned level)> &indent = {})
{
    std::string result;
    std::string open; // brackets
    bool isQuoted = false;
    const auto breakLine = [&] {
        const auto level = static_cast<unsigned>(open.size());
        result.append(1, '\n').append(indent ? indent(level) : 2 * level, ' ');
    };
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        isQuoted ^= c == '"' && text[at - 1] != '\\';
        if (isQuoted || c == '"') {
            result += c;
        } else if (c == '{' || c == '[') {
            open += c;
            result += c;
            if (c == '{') {
                breakLine();
            }
        } else if (c == '}' || c == ']') {
            open.pop_back();
            if (c == '}') {
                breakLine();
            }
            result += c;
        } else if (c == ',' && open.back() == '{') {
            result += c;
            breakLine();
        } else if (c == ':') {
            result += ": ";
        } else if (std::isspace(static_cast<unsigned char>(c)) == 0) {
            result += c;
        }
    }
    return result + "\n";
}

class YosysWindows : public FilesTest {
  protected:
    /// Sizes of sections and windows: those of readJson(), and small ones that leave more in the file.
    static constexpr std::array<ShortText::Sizes, 4> SIZES{{ShortText::Sizes(), {0, 0}, {1, 100}, {200, 300}}};

    /// The same as outcome(), of a file with this text.
    std::string outcomeOfFile(const std::string &text, const ShortText::Sizes &sizes = {}) const
    {
        const std::string file = write("design.json", text);
        std::string result;
        try {
            readJsonFile(file, sizes, {});
            result = dumpLibset();
        } catch (const ReadError &error) {
            result = std::string(error.what()).substr(directory().string().size() + 1);
        }
        Verific::Libset::Reset();
        return result;
    }
    /// Expects every way to read @p text to come to what the plain one does; returns that.
    std::string expectOneOutcome(const std::string &text) const
    {
        const std::string whole = outcome(text, WHOLE);
        EXPECT_EQ(outcome(text, 0), whole) << text;
        for (const ShortText::Sizes &sizes : SIZES) {
            EXPECT_EQ(outcomeOfFile(text, sizes), whole) << text;
        }
        return whole;
    }
    /// What comes of @p text when its sections are read from the file, and nothing is read twice.
    std::string outcomeOfSections(const std::string &text, const ShortText::Sizes &sizes, std::size_t sections) const
    {
        const std::string path = write("design.json", text);
        const ReadFault fault(path);
        const kvr::netlistdb::yosys::JsonFile file(path, fault);
        const ShortText shortText(file, sizes);
        EXPECT_EQ(shortText.sections().size(), sections);
        readJsonText(shortText.input(), path, {});
        std::string result = dumpLibset();
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
               "port_directions": {"x": "input"}, "connections": {"x": [6]}},
        "u4": {"hide_name": 0, "type": "unknown", "port_directions": {"x": "input", "z": "input"},
               "connections": {"x": [5], "\u007a": [6]}},
        "u5": {"hide_name": 0, "type": "unk\u006eown", "port_directions": {"x": "input"}, "connections": {"x": [3]}},
        "u6": {"hide_name": 0, "type": "unk\u006eown", "connections": {"z": [3], "x": [2]}},
        "u7": {"hide_name": 0, "type": "$dff", "parameters": {"CLK_POLARITY": "1", "WIDTH": "1"}, "attributes": {},
               "connections": {"CLK": [2], "D": [6]}},
        "u8": {"hide_name": 0, "type": "$not", "connections": {"A": [6]}},
        "u9": {"hide_name": 0, "type": "$not", "connections": {"A": [5]}}
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
        for (const std::size_t window : {std::size_t{0}, std::size_t{150}, std::size_t{4000}}) {
            EXPECT_TRUE(outcome(text, window) == whole) << "windows of " << window << " bytes";
        }
        const std::size_t count = text == SMALL ? SIZES.size() : testsupport::randomInputs(SIZES.size());
        for (std::size_t at = 0; at < count; ++at) {
            EXPECT_TRUE(outcomeOfFile(text, SIZES[at]) == whole) << "from a file, sizes " << at;
        }
    }
}

TEST_F(YosysWindows, OfAFileAreReadFromIt)
{
    const std::string text = indented(SMALL);
    const std::string whole = outcome(SMALL, WHOLE);
    EXPECT_EQ(outcome(text, WHOLE), whole);
    EXPECT_EQ(outcomeOfSections(text, {0, 0}, 5), whole); // one of the six is empty, and not on lines of its own
    EXPECT_EQ(outcomeOfSections(text, {300, 100}, 3), whole);
    EXPECT_EQ(outcomeOfSections(text, {}, 0), whole);
    const std::string netlist = textOf(DESIGNS_DIR "/soc_postmap.json");
    EXPECT_TRUE(outcomeOfSections(netlist, {100000, 5000}, 2) == outcome(netlist, WHOLE));
}

TEST_F(YosysWindows, DoNotTrustTheIndentation)
{
    const std::string cell = R"("type": "$not", "connections": {"A": [2]})";
    const auto module = [](const std::string &body) { return "{\"modules\": {\"top\": {\n" + body + "\n}}}\n"; };
    const std::vector<std::string> good = {
        // A line that seems to end the cells ends the first of them.
        module("\"cells\": {\n \"a\": {\n  " + cell + "\n}, \"b\": {" + cell + "}\n}"),
        // The same, and a further one that would fit.
        module("\"cells\": {\n\"a\": {\n" + cell + "\n},\n\"b\": {\n" + cell + "\n}\n}"),
        // A field of a cell is indented like the cells.
        module("\"cells\": {\n \"a\": {\n \"attributes\": {\n \"x\": \"1\"\n },\n " + cell + "\n },\n \"b\": {" + cell +
               "}\n}"),
        // Sections inside of what is passed over, or of attributes, parameters, ports.
        module("\"foreign\": {\n\"cells\": {\n\"a\": 1\n}\n},\n\"cells\": {\n \"a\": {" + cell + "}\n}"),
        module("\"cells\": {\n \"a\": {" + cell + ",\n  \"cells\": {\n   \"b\": 1\n  }\n }\n}"),
        // Empty ones, and others on one line.
        module("\"cells\": {\n},\n\"netnames\": {\n},\n\"memories\": {}"),
        // Other blanks.
        module("\t\"cells\": {\n\t\t\"a\": {\n\t\t\t" + cell + "\n\t\t},\n\t\t\"b\": {\n\t\t\t" + cell +
               "\n\t\t}\n\t}"),
        module("\"cells\": {\r\n \"a\": {\r\n" + cell + "\r\n }\r\n}"),
        module(std::string(100, ' ') + "\"cells\": {\n \"a\": {" + cell + "}\n" + std::string(100, ' ') + "}"),
        module("\"cells\": {\n" + std::string(100, ' ') + "\"a\": {" + cell + "}\n}"),
    };
    for (const std::string &text : good) {
        EXPECT_EQ(expectOneOutcome(text).find("design.json: "), std::string::npos) << text;
    }
    const std::vector<std::string> bad = {
        // What is passed over must be JSON, too.
        module("\"foreign\": {\n\"cells\": {\n\"a\": nil\n}\n}"),
        module("\"ports\": {\n\"cells\": {\n\"a\": 1\n}\n}"),
        // No end, or a second one.
        module("\"cells\": {\n \"a\": {" + cell + "}"),
        module("\"cells\": {\n \"a\": {" + cell + "}\n}}"),
        module("\"cells\": {\n \"a\": {" + cell + "}}\n}"),
        // Twice, and no comma between.
        module("\"cells\": {\n \"a\": {" + cell + "}\n},\n\"cells\": {\n \"a\": {" + cell + "}\n}"),
        module("\"cells\": {\n \"a\": {" + cell + "}\n}\n\"netnames\": {\n}"),
        // A comma too many, behind the last field and before a border.
        module("\"cells\": {\n \"a\": {" + cell + "\n },\n}"),
        module("\"cells\": {\n \"a\": {\n" + cell + "\n },,\n \"b\": {" + cell + "\n }\n}"),
        // A text with a line break, which ends as the lines of a section do.
        module("\"cells\": {\n \"a\": {" + cell + ", \"x\": \"\n},\n\"netnames\": {\n\"}\n}"),
        // Braces are missing, as many as the lines that close the section and the module have too many.
        module("\"netnames\": {\n \"n\": {\"bits\": [2], \"attributes\": {\n}"),
        module("\"netnames\": {\n \"n\": {\"bits\": [2], \"attributes\": {\"a\": 1\n}"),
        module("\"cells\": {\n \"a\": {\"type\": \"$not\", \"connections\": {\n}"),
        // No object where a section is.
        module("\"cells\": {\n1\n}"),
        module("\"cells\": {\n \"a\": {" + cell + "\n },\n \"b\"\n}"),
    };
    for (const std::string &text : bad) {
        EXPECT_EQ(expectOneOutcome(text).rfind("design.json: ", 0), 0u) << text;
    }
}

TEST_F(YosysWindows, AreRightHoweverTheLinesAreIndented)
{
    std::mt19937 random(20261123);
    const std::string whole = outcome(SMALL, WHOLE);
    for (int round = 0; round < ROUNDS / 5; ++round) {
        const unsigned most = 1 + random() % 4;
        const std::string text = indented(SMALL, [&](unsigned) { return static_cast<unsigned>(random() % most); });
        for (const ShortText::Sizes &sizes : SIZES) {
            EXPECT_EQ(outcomeOfFile(text, sizes), whole) << text;
        }
    }
}

TEST_F(YosysWindows, MayCrossTheBlocksThatTheFileIsReadIn)
{
    constexpr std::size_t BLOCK = std::size_t{1} << 18;
    const std::string whole = outcome(SMALL, WHOLE);
    const std::string text = indented(SMALL);
    const std::size_t u9 = text.find("\"u9\"");
    const std::size_t end = text.find("\"netnames\"");
    for (std::size_t at = u9; at < end; at += 1500 / ROUNDS) {
        const std::string before = "{\n" + std::string(BLOCK - 1 - at, ' ') + text.substr(1);
        EXPECT_EQ(outcomeOfSections(before, {0, 100}, 5), whole) << at;
        const std::string inside = text.substr(0, u9) + std::string(BLOCK - at, ' ') + text.substr(u9);
        EXPECT_EQ(outcomeOfSections(inside, {0, 100}, 5), whole) << at;
    }
}

TEST_F(YosysWindows, KeepBlanksInsideATextHoweverTheFileIsReadInBlocks)
{
    const std::string blanks(std::size_t{1} << 20, ' ');
    const std::string attributes = "{\"attributes\": {\"a\": \"x" + blanks + "y\"}";
    const std::string cell = "\n \"c\": {\n  \"type\": \"$not\",\n  \"parameters\": {\"P\": \"" + blanks + "z\"}\n }";
    const std::string text = "{\"modules\":\n  {\"top\": " + attributes + ",\n\"cells\": {" + cell + "\n}}}}";
    const std::string whole = outcome(text, WHOLE);
    EXPECT_NE(whole.find("x" + blanks + "y"), std::string::npos);
    EXPECT_GT(whole.size(), 2 * blanks.size());
    for (const ShortText::Sizes &sizes : SIZES) {
        EXPECT_TRUE(outcomeOfFile(text, sizes) == whole);
    }
}

TEST_F(YosysWindows, DoNotChangeWhatIsSaidOfDamagedTexts)
{
    std::mt19937 random(20260814);
    const std::string_view characters = "{}[],:\"\\ \n0x";
    int refused = 0;
    for (int round = 0; round < ROUNDS; ++round) {
        std::string text = round % 2 == 0 ? SMALL : indented(SMALL);
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
        refused += expectOneOutcome(text).rfind("design.json: ", 0) == 0 ? 1 : 0;
    }
    EXPECT_GT(refused, ROUNDS / 3);
}

} // namespace
} // namespace yosystest
