#include <netlistdb/VDBHelper.h>

#include "tests/support/Throws.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

namespace kvr::netlistdb {
namespace {

std::string hexadecimal(const std::array<unsigned char, 32> &digest)
{
    std::string text;
    for (const unsigned char byte : digest) {
        text += "0123456789abcdef"[byte / 16];
        text += "0123456789abcdef"[byte % 16];
    }
    return text;
}

std::string checksum(const std::string &path)
{
    std::array<unsigned char, 32> digest{};
    VDBHelper::computeSHA256CheckSum(path, digest.data());
    return hexadecimal(digest);
}

/// What the program `sha256sum` says.
std::string sha256sum(const std::string &path)
{
    std::FILE *pipe = popen(("sha256sum < '" + path + "'").c_str(), "r");
    if (pipe == nullptr) {
        return "<no pipe>";
    }
    std::array<char, 65> text{};
    const std::size_t size = std::fread(text.data(), 1, 64, pipe);
    pclose(pipe);
    return std::string(text.data(), size);
}

class FileChecksumTest : public testing::Test {
  protected:
    FileChecksumTest()
    {
        std::string name = (std::filesystem::temp_directory_path() / "checksum-XXXXXX").string();
        directory = mkdtemp(name.data());
    }
    ~FileChecksumTest() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }

    std::string file(std::size_t size) const
    {
        std::mt19937 random(static_cast<unsigned>(size));
        std::string bytes(size, '\0');
        for (char &byte : bytes) {
            byte = static_cast<char>(static_cast<unsigned char>(random()));
        }
        const std::string path = directory / std::to_string(size);
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

    std::filesystem::path directory;
};

TEST_F(FileChecksumTest, IsThatOfSha256sumForEverySize)
{
    for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 8192U, 10000000U}) {
        const std::string path = file(size);
        ASSERT_EQ(std::filesystem::file_size(path), size);
        EXPECT_EQ(checksum(path), sha256sum(path)) << size;
    }
}

TEST_F(FileChecksumTest, IsTheWellKnownOneForAnEmptyFile)
{
    EXPECT_EQ(checksum(file(0)), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

TEST_F(FileChecksumTest, SaysWhichFileCannotBeOpenedAndWhyAndLeavesTheBufferAlone)
{
    std::array<unsigned char, 32> digest{};
    digest.fill(0xA5);
    const auto untouched = digest;
    const std::string missing = directory / "missing";
    EXPECT_EQ(
        testsupport::messageOf<std::runtime_error>([&] { VDBHelper::computeSHA256CheckSum(missing, digest.data()); }),
        "Cannot open \"" + missing + "\": No such file or directory.");
    EXPECT_EQ(digest, untouched);
    EXPECT_EQ(testsupport::messageOf<std::runtime_error>([&] { VDBHelper::computeSHA256CheckSum("", digest.data()); }),
              "Cannot open \"\": No such file or directory.");
    EXPECT_EQ(digest, untouched);
}

TEST_F(FileChecksumTest, TakesAFileThatCannotBeReadForAnEmptyOne)
{
    EXPECT_EQ(checksum(directory), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

} // namespace
} // namespace kvr::netlistdb
