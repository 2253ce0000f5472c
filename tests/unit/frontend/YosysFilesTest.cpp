// Files: what cannot be read, progress, cancelling, and that nothing half-read stays behind.

#include "ReaderTest.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include <yosys/NetlistReader.h>

namespace yosystest {
namespace {

using kvr::netlistdb::yosys::JsonFile;
using kvr::netlistdb::yosys::ReadCancelled;
using kvr::netlistdb::yosys::ReadError;
using kvr::netlistdb::yosys::ReadFault;
using kvr::netlistdb::yosys::readJson;
using kvr::netlistdb::yosys::ReadOptions;
using kvr::netlistdb::yosys::ShortText;

constexpr int CELLS = 6000;

class YosysFiles : public FilesTest {
  protected:
    static std::string errorOfFile(const std::string &path)
    {
        try {
            readJson(path);
        } catch (const ReadError &error) {
            return error.what();
        }
        return "no error";
    }
    /// A module with many cells.
    static std::string manyCells()
    {
        std::string text = R"({"modules": {"sub": {"ports": {"a": {"direction": "input", "bits": [2]}}}, "top": {)"
                           R"("cells": {)";
        for (int i = 0; i < 2000; ++i) {
            const std::string number = std::to_string(i);
            text.append(i == 0 ? "" : ", ");
            text.append("\"u" + number + R"(": {"type": "sub", "connections": {"a": [)" + number + "]}}");
        }
        text += R"(}, "netnames": {)";
        for (int i = 0; i < 2000; ++i) {
            const std::string number = std::to_string(i);
            text.append(i == 0 ? "" : ", ").append("\"n" + number + R"(": {"bits": [)" + number + "]}");
        }
        return text + "}}}}";
    }

    std::filesystem::path m_directory;
};

TEST_F(YosysFiles, AreRead)
{
    const Verific::Netlist *top = readJson(write("ok.json", R"({"creator": "x", "modules": {"top": {}}})"));
    EXPECT_EQ(print(top), "work/top\n");
}

TEST_F(YosysFiles, ThatCannotBeReadAreNamedWithTheReason)
{
    EXPECT_EQ(errorOfFile(path("missing.json")),
              path("missing.json") + ": cannot read the file: No such file or directory");
    EXPECT_EQ(errorOfFile(directory().string()), directory().string() + ": cannot read the file: it is a directory");
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(errorOfFile(path("pipe")), path("pipe") + ": cannot read the file: it is no regular file");
}

TEST_F(YosysFiles, WithoutPermissionAreNamedWithTheReason)
{
    const std::string secret = write("secret.json", "{}");
    std::filesystem::permissions(secret, std::filesystem::perms::none);
    if (access(secret.c_str(), R_OK) == 0) { // the superuser may read everything
        EXPECT_EQ(errorOfFile(secret), secret + ": not a yosys netlist: it has no \"modules\"");
    } else {
        EXPECT_EQ(errorOfFile(secret), secret + ": cannot read the file: Permission denied");
    }
}

TEST_F(YosysFiles, LargerThanTheParserCanTakeAreRefused)
{
    const std::string huge = write("huge.json", "{");
    std::filesystem::resize_file(huge, (std::uintmax_t{1} << 32) + 1); // takes no space
    EXPECT_EQ(errorOfFile(huge), huge + ": the file is larger than 4 GiB");
}

TEST_F(YosysFiles, ThatBecomeShorterWhileTheyAreReadAreRefused)
{
    const std::string path = write("short.json", "{\n  \"modules\": {}}");
    const ReadFault fault(path);
    const JsonFile file(path, fault);
    std::filesystem::resize_file(path, 5);
    EXPECT_FALSE(file.isUnchanged());
    for (const ShortText::Sizes &sizes : {ShortText::Sizes(), ShortText::WHOLE}) {
        try {
            const ShortText text(file, sizes);
            FAIL() << "no error";
        } catch (const ReadError &error) {
            EXPECT_EQ(error.what(), path + ": cannot read the file: it became shorter meanwhile");
        }
    }
}

/// Cells that are indented as yosys does it, so that they stay in the file; from number @p misleading on, only their
/// fields are.
std::string indentedCells(int misleading)
{
    std::string text = "{\n  \"modules\": {\n    \"top\": {\n      \"cells\": {\n";
    for (int i = 0; i < CELLS; ++i) {
        const std::string name = "        \"u" + std::to_string(i) + "\": {\n";
        const std::string connections =
            "\"connections\": {\n            \"A\": [ " + std::to_string(i + 2) + " ]\n          }";
        if (i < misleading) {
            text += name + "          \"type\": \"$not\",\n          " + connections + "\n        }";
        } else {
            text += name + "\"type\": \"$not\", \"note\": {\n        },\n        " + connections + "}";
        }
        text += i == CELLS - 1 ? "\n" : i < misleading ? ",\n" : ",";
    }
    return text + "      }\n    }\n  }\n}\n";
}

TEST_F(YosysFiles, AreReadOnceMoreWhenTheyWereWrittenToMeanwhile)
{
    const std::string path = write("cells.json", indentedCells(CELLS));
    const ReadFault fault(path);
    const JsonFile file(path, fault);
    const ShortText text(file, {});
    ASSERT_EQ(text.sections().size(), 1u);
    EXPECT_GT(text.sections().begin()->second.sizeInFile(), 100000u);
    EXPECT_NE(kvr::netlistdb::yosys::readJsonText(text.input(), path, {}), nullptr);
    Verific::Libset::Reset();
    std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) + std::chrono::seconds(1));
    EXPECT_FALSE(file.isUnchanged());
    EXPECT_THROW(kvr::netlistdb::yosys::readJsonText(text.input(), path, {}), ReadError);
    EXPECT_EQ(dumpLibset(), "");
    ReadOptions options;
    bool isTouched = false;
    options.progress = [&](std::uint64_t done, std::uint64_t) {
        if (done > 0 && !isTouched) {
            isTouched = true;
            std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) + std::chrono::seconds(1));
        }
        return true;
    };
    EXPECT_EQ(readJson(path, options)->GetInsts()->Size(), static_cast<unsigned>(CELLS));
    EXPECT_TRUE(isTouched);
}

TEST_F(YosysFiles, ReportProgressUpToTheirSize)
{
    const std::string file = write("large.json", manyCells());
    const std::uint64_t size = std::filesystem::file_size(file);
    std::vector<std::uint64_t> done;
    ReadOptions options;
    options.progress = [&](std::uint64_t bytes, std::uint64_t total) {
        EXPECT_EQ(total, size);
        done.push_back(bytes);
        return true;
    };
    readJson(file, options);
    ASSERT_GT(done.size(), 80u);
    EXPECT_LT(done.size(), 110u);
    EXPECT_EQ(done.front(), 0u);
    EXPECT_EQ(done.back(), size);
    for (std::size_t i = 1; i < done.size(); ++i) {
        EXPECT_LE(done[i - 1], done[i]);
        EXPECT_LE(done[i] - done[i - 1], size / 50);
    }
}

TEST_F(YosysFiles, ReportRisingProgressWhenTheyAreReadTwice)
{
    for (const int misleading : {CELLS, CELLS / 2}) {
        const std::string text = indentedCells(misleading);
        std::vector<std::uint64_t> done;
        ReadOptions options;
        options.progress = [&](std::uint64_t bytes, std::uint64_t total) {
            EXPECT_EQ(total, text.size());
            done.push_back(bytes);
            return true;
        };
        EXPECT_EQ(readJson(write("cells.json", text), options)->GetInsts()->Size(), static_cast<unsigned>(CELLS));
        EXPECT_EQ(done.size() > 110, misleading < CELLS) << done.size();
        EXPECT_EQ(done.back(), text.size());
        EXPECT_TRUE(std::is_sorted(done.begin(), done.end()));
    }
}

TEST_F(YosysFiles, PassOnReadErrorsOfTheProgressCallback)
{
    unsigned calls = 0;
    ReadOptions options;
    options.progress = [&](std::uint64_t done, std::uint64_t) -> bool {
        ++calls;
        if (done > 0) {
            throw ReadError("mine");
        }
        return true;
    };
    try {
        readJson(write("cells.json", indentedCells(CELLS)), options);
        FAIL() << "no error";
    } catch (const ReadError &error) {
        EXPECT_STREQ(error.what(), "mine");
    }
    EXPECT_EQ(calls, 2u);
}

TEST_F(YosysFiles, StopBeingReadWhenTheCallerWantsNoMore)
{
    const std::string file = write("large.json", manyCells());
    const std::string before = dumpLibset();
    for (const int calls : {1, 2, 50, 90}) {
        ReadOptions options;
        int left = calls;
        options.progress = [&](std::uint64_t, std::uint64_t) { return --left > 0; };
        EXPECT_THROW(readJson(file, options), ReadCancelled);
        EXPECT_EQ(left, 0);
        EXPECT_EQ(dumpLibset(), before);
    }
}

TEST_F(YosysFiles, PassOnWhatTheProgressCallbackThrows)
{
    ReadOptions options;
    options.progress = [](std::uint64_t, std::uint64_t) -> bool { throw std::logic_error("mine"); };
    EXPECT_THROW(readModules(R"("top": {})", options), std::logic_error);
}

TEST_F(YosysFiles, ThatFailLeaveTheNetlistsOfTheSameNamesAlone)
{
    const std::string good = R"("top": {"cells": {
        "a": {"type": "sub", "connections": {"p": ["1"]}},
        "b": {"type": "$not", "port_directions": {"A": "input"}, "connections": {"A": [2]}},
        "c": {"type": "ip", "port_directions": {"A": "input"}, "connections": {"A": [2]}}}},
        "sub": {"ports": {"p": {"direction": "input", "bits": [2]}}})";
    readModules(good);
    const std::string before = dumpLibset();
    EXPECT_EQ(errorOfModules(good + R"(, "bad": {"cells": {"u": {"type": "nowhere"}}})"),
              "design.json: cell of unknown type 'nowhere' without \"port_directions\" (module 'bad', cell 'u')");
    EXPECT_EQ(dumpLibset(), before);
    EXPECT_EQ(errorOfModules(good + R"(, "second_top": {})"),
              "design.json: no module is marked as top, and several are instantiated by no other: 'top', "
              "'second_top'");
    EXPECT_EQ(dumpLibset(), before);
}

} // namespace
} // namespace yosystest
