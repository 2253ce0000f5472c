// One file per defect in malformed/, named for the defect, and the message that it gets.

#include "ReaderTest.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace yosystest {
namespace {

struct Malformed {
    const char *file;
    const char *message;
};

// clang-format off
const Malformed FILES[] = {
    {"a_number", "not a yosys netlist: the file holds no JSON object"},
    {"attribute_bad_number", "not valid JSON at line 1, column 45: Problem while parsing a number (module 'top')"},
    {"attribute_not_text", "an attribute must be a text or a number (module 'top')"},
    {"attribute_null", "an attribute must be a text or a number (module 'top')"},
    {"attributes_not_an_object", R"("attributes" must be an object (module 'top'))"},
    {"bad_escape", "not valid JSON at line 1, column 22: Problem while parsing a string"},
    {"bad_literal", "not valid JSON at line 1, column 13: Problem while parsing an atom starting with the letter 'n'"},
    {"bad_number", "not valid JSON at line 1, column 13: Problem while parsing a number"},
    {"bad_surrogate", "not valid JSON at line 1, column 26: Problem while parsing a string"},
    {"bad_truth_value", "not valid JSON at line 1, column 13: Problem while parsing an atom starting with the letter 't'"},
    {"bad_utf8", "not valid JSON: The input is not valid UTF-8"},
    {"bit_array", R"(a bit must be a number or one of "0", "1", "x" and "z" (module 'top', net 'n'))"},
    {"bit_empty_text", R"(a bit must be a number or one of "0", "1", "x" and "z" (module 'top', net 'n'))"},
    {"bit_enormous", "bit out of range: 99999999999999999999999 is no whole number from 0 to 2147483647 (module 'top', net 'n')"},
    {"bit_fractional", "bit out of range: 2.5 is no whole number from 0 to 2147483647 (module 'top', net 'n')"},
    {"bit_long_text", R"(a bit must be a number or one of "0", "1", "x" and "z" (module 'top', net 'n'))"},
    {"bit_negative", "bit out of range: -2 is no whole number from 0 to 2147483647 (module 'top', net 'n')"},
    {"bit_null", R"(a bit must be a number or one of "0", "1", "x" and "z" (module 'top', net 'n'))"},
    {"bit_too_large", "bit out of range: 2147483648 is no whole number from 0 to 2147483647 (module 'top', net 'n')"},
    {"bit_unknown_text", R"(a bit must be a number or one of "0", "1", "x" and "z" (module 'top', net 'n'))"},
    {"cell_attributes_twice", R"("attributes" appears in the cell twice (module 'top', cell 'u1'))"},
    {"cell_direction_not_text", "a port direction must be a text (module 'top', cell 'u1')"},
    {"cell_direction_unknown", R"(port direction must be "input", "output" or "inout", not "up" (module 'top', cell 'u1', port 'a'))"},
    {"cell_directions_not_an_object", R"("port_directions" must be an object (module 'top', cell 'u1'))"},
    {"cell_hide_name_not_a_flag", R"("hide_name" must be 0 or 1 (module 'top', cell 'u1'))"},
    {"cell_not_an_object", "a cell must be an object (module 'top', cell 'u1')"},
    {"cell_of_unknown_internal_type", R"(cell of unknown type '$nowhere' without "port_directions" (module 'top', cell 'u1', port 'a'))"},
    {"cell_of_unknown_type", R"(cell of unknown type 'nowhere' without "port_directions" (module 'top', cell 'u1'))"},
    {"cell_parameter_not_text", "a parameter must be a text or a number (module 'top', cell 'u1')"},
    {"cell_parameters_not_an_object", R"("parameters" must be an object (module 'top', cell 'u1'))"},
    {"cell_type_not_text", R"("type" must be a text (module 'top', cell 'u1'))"},
    {"cell_type_twice", R"("type" appears in the cell twice (module 'top', cell 'u1'))"},
    {"cell_without_type", R"(the cell has no "type" (module 'top', cell 'u1'))"},
    {"cells_not_an_object", R"("cells" must be an object (module 'top'))"},
    {"cells_twice", R"("cells" appears in the module twice (module 'top'))"},
    {"connection_bit_out_of_range", "bit out of range: -1 is no whole number from 0 to 2147483647 (module 'top', cell 'u1', port 'a')"},
    {"connection_not_an_array", "a connection must be an array (module 'top', cell 'u1', port 'a')"},
    {"connection_to_unknown_port", "cell type 'sub' has no such port (module 'top', cell 'u1', port 'b')"},
    {"connection_too_narrow", "the connection is 1 wide, but the port of cell type 'sub' is 2 (module 'top', cell 'u1', port 'q')"},
    {"connection_too_wide", "the connection is 2 wide, but the port of cell type 'sub' is 1 (module 'top', cell 'u1', port 'a')"},
    {"connection_twice", "the port is connected twice (module 'top', cell 'u1', port 'a')"},
    {"connection_twice_escaped", "the port is connected twice (module 'top', cell 'u1', port 'a')"},
    {"connections_not_an_object", R"("connections" must be an object (module 'top', cell 'u1'))"},
    {"control_character", "not valid JSON: Within strings, some characters must be escaped, we found unescaped characters"},
    {"deep_nesting", "the file is nested too deeply"},
    {"deep_nesting_in_module", "the file is nested too deeply (module 'top')"},
    {"directions_disagree", "the port has another direction here than before (module 'top', cell 'u2', port 'a')"},
    {"empty", "the file is empty"},
    {"key_without_quotes", "not valid JSON at line 1, column 2: The JSON document has an improper structure: missing or superfluous commas, braces, missing keys, etc."},
    {"memories_not_an_object", R"("memories" must be an object (module 'top'))"},
    {"memory_negative", R"(a memory must have a "width" and a "size" that are not negative (module 'top', memory 'm'))"},
    {"memory_not_an_object", "a memory must be an object (module 'top', memory 'm')"},
    {"memory_size_not_a_number", R"("size" must be a whole number of 32 bits (module 'top', memory 'm'))"},
    {"memory_too_large", "a memory of 65536 words of 65536 bits is too large: at most 4294967295 bits (module 'top', memory 'm')"},
    {"memory_without_size", R"(a memory must have a "width" and a "size" that are not negative (module 'top', memory 'm'))"},
    {"memory_without_width", R"(a memory must have a "width" and a "size" that are not negative (module 'top', memory 'm'))"},
    {"missing_colon", "not valid JSON at line 1, column 20: The JSON document has an improper structure: missing or superfluous commas, braces, missing keys, etc."},
    {"missing_comma", "not valid JSON at line 1, column 34: The JSON document has an improper structure: missing or superfluous commas, braces, missing keys, etc. (module 'top')"},
    {"missing_value", "not valid JSON at line 1, column 21: The JSON document has an improper structure: missing or superfluous commas, braces, missing keys, etc. (module 'top')"},
    {"module_contains_itself", "module 'a' contains itself"},
    {"module_not_an_object", "a module must be an object (module 'top')"},
    {"module_twice", "the module appears in the file twice (module 'top')"},
    {"module_twice_escaped", "the module appears in the file twice (module 'top')"},
    {"modules_contain_each_other", "module 'a' contains itself through 'b'"},
    {"modules_not_an_object", R"("modules" must be an object)"},
    {"modules_twice", R"("modules" appears in the file twice)"},
    {"name_with_line_break", R"(cell of unknown type 'no?where' without "port_directions" (module 'top', cell 'u1'))"},
    {"net_attribute_not_text", "an attribute must be a text or a number (module 'top', net 'n')"},
    {"net_attributes_not_an_object", R"("attributes" must be an object (module 'top', net 'n'))"},
    {"net_bits_not_an_array", R"("bits" must be an array (module 'top', net 'n'))"},
    {"net_bits_twice", R"("bits" appears twice (module 'top', net 'n'))"},
    {"net_differs_from_its_port", "the net has other bits than the port of its name (module 'top', net 'a')"},
    {"net_hide_name_not_a_flag", R"("hide_name" must be 0 or 1 (module 'top', net 'n'))"},
    {"net_leaves_the_index_range", "a vector of 2 bits at offset 2147483647 leaves the range of 32-bit indices (module 'top', net 'n')"},
    {"net_not_an_object", "a net must be an object (module 'top', net 'n')"},
    {"net_wider_than_its_port", "the net has other bits than the port of its name (module 'top', net 'a')"},
    {"net_without_bits", R"(the net has no "bits" (module 'top', net 'n'))"},
    {"netnames_not_an_object", R"("netnames" must be an object (module 'top'))"},
    {"netnames_twice", R"("netnames" appears in the module twice (module 'top'))"},
    {"no_modules", R"(not a yosys netlist: it has no "modules")"},
    {"no_top", "no module is marked as top, and none with a body is instantiated by no other"},
    {"not_an_object", "not a yosys netlist: the file holds no JSON object"},
    {"not_json", "not valid JSON at line 1, column 1: The JSON document has an improper structure: missing or superfluous commas, braces, missing keys, etc."},
    {"nul_in_name", "a text holds a NUL character"},
    {"only_blanks", "the file is empty"},
    {"operator_widths_disagree", "the connection is 2 wide, but the port of cell type '$not' is 1 (module 'top', cell 'u2', port 'A')"},
    {"port_bits_not_an_array", R"("bits" must be an array (module 'top', port 'a'))"},
    {"port_bits_twice", R"("bits" appears twice (module 'top', port 'a'))"},
    {"port_direction_not_text", "a port direction must be a text (module 'top', port 'a')"},
    {"port_leaves_the_index_range", "a vector of 2 bits at offset 2147483647 leaves the range of 32-bit indices (module 'top', port 'a')"},
    {"port_not_an_object", "a port must be an object (module 'top', port 'a')"},
    {"port_offset_not_a_number", R"("offset" must be a whole number of 32 bits (module 'top', port 'a'))"},
    {"port_offset_too_large", R"("offset" must be a whole number of 32 bits (module 'top', port 'a'))"},
    {"port_twice", "the port appears in the module twice (module 'top', port 'a')"},
    {"port_unknown_direction", R"(port direction must be "input", "output" or "inout", not "sideways" (module 'top', port 'a'))"},
    {"port_upto_not_a_flag", R"("upto" must be 0 or 1 (module 'top', port 'a'))"},
    {"port_without_bits", R"(the port has no "bits" (module 'top', port 'a'))"},
    {"port_without_direction", R"(the port has no "direction" (module 'top', port 'a'))"},
    {"ports_not_an_object", R"("ports" must be an object (module 'top'))"},
    {"ports_twice", R"("ports" appears in the module twice (module 'top'))"},
    {"several_marked_tops", "several modules are marked as top: 'a', 'b'"},
    {"several_tops", "no module is marked as top, and several are instantiated by no other: 'a', 'b'"},
    {"trailing_bracket", "not valid JSON at line 1, column 25: Unexpected trailing content in the JSON input."},
    {"trailing_comma", "not valid JSON at line 1, column 24: The JSON document has an improper structure: missing or superfluous commas, braces, missing keys, etc."},
    {"trailing_garbage", "not valid JSON at line 1, column 26: Unexpected trailing content in the JSON input."},
    {"unclosed", "not valid JSON at line 1, column 33: The JSON document has an improper structure: missing or superfluous commas, braces, missing keys, etc. (module 'top')"},
    {"unclosed_string", "not valid JSON: A string is opened, but never closed."},
    {"wrong_bracket", "not valid JSON at line 1, column 32: The JSON document has an improper structure: missing or superfluous commas, braces, missing keys, etc. (module 'top')"},
};
// clang-format on

class YosysMalformed : public testing::TestWithParam<Malformed> {
  private:
    testsupport::LibsetGuard m_guard;
};

TEST_P(YosysMalformed, FileGetsItsMessageAndLeavesNothingBehind)
{
    readModules(R"("top": {"cells": {"u1": {"type": "sub", "connections": {"a": ["1"]}}}},
                   "sub": {"ports": {"a": {"direction": "input", "bits": [2]}}})");
    const std::string before = dumpLibset();
    const std::string path = std::string(MALFORMED_DIR "/") + GetParam().file + ".json";
    try {
        kvr::netlistdb::yosys::readJson(path);
        FAIL() << "no error";
    } catch (const kvr::netlistdb::yosys::ReadError &error) {
        EXPECT_EQ(error.what(), path + ": " + GetParam().message);
    }
    EXPECT_EQ(dumpLibset(), before);
}

TEST_P(YosysMalformed, FileLeavesAnEmptyLibsetEmpty)
{
    const std::string path = std::string(MALFORMED_DIR "/") + GetParam().file + ".json";
    EXPECT_THROW(kvr::netlistdb::yosys::readJson(path), kvr::netlistdb::yosys::ReadError);
    EXPECT_EQ(dumpLibset(), "");
}

INSTANTIATE_TEST_SUITE_P(All, YosysMalformed, testing::ValuesIn(FILES),
                         [](const testing::TestParamInfo<Malformed> &test) { return std::string(test.param.file); });

TEST(YosysMalformedFiles, AllHaveTheirMessage)
{
    std::vector<std::string> present;
    for (const auto &entry : std::filesystem::directory_iterator(MALFORMED_DIR)) {
        present.push_back(entry.path().stem().string());
    }
    std::vector<std::string> listed;
    for (const Malformed &each : FILES) {
        listed.emplace_back(each.file);
    }
    std::sort(present.begin(), present.end());
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(present, listed);
}

} // namespace
} // namespace yosystest
