#include <LineFile.h>

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace {

using Verific::LineFile;
using Verific::linefile_type;

class LineFileTest : public testing::Test {
  protected:
    void SetUp() override { TearDown(); }
    void TearDown() override
    {
        LineFile::DeleteAllLineFiles();
        LineFile::ResetFileIdMaps();
    }
};

TEST_F(LineFileTest, AnswersFileAndLine)
{
    const linefile_type handle = LineFile::EncodeLineFile("/rtl/top.v", 42);
    ASSERT_TRUE(handle);
    EXPECT_STREQ(LineFile::GetFileName(handle), "/rtl/top.v");
    EXPECT_STREQ(LineFile::GetAbsFileName(handle), "/rtl/top.v");
    EXPECT_EQ(LineFile::GetLineNo(handle), 42u);
}

TEST_F(LineFileTest, MakesARelativePathAbsolute)
{
    const linefile_type handle = LineFile::EncodeLineFile("rtl/./sub/../top.v", 1);
    EXPECT_STREQ(LineFile::GetFileName(handle), "rtl/./sub/../top.v");
    EXPECT_EQ(LineFile::GetAbsFileName(handle), (std::filesystem::current_path() / "rtl/top.v").string());
}

TEST_F(LineFileTest, HasNoHandleForNoFile)
{
    EXPECT_FALSE(LineFile::EncodeLineFile(nullptr, 3));
    EXPECT_FALSE(LineFile::EncodeLineFile("", 3));
    EXPECT_FALSE(LineFile::EncodeLineFile(nullptr, "/a", 3));
    EXPECT_EQ(LineFile::GetFileName(0), nullptr);
    EXPECT_EQ(LineFile::GetAbsFileName(0), nullptr);
    EXPECT_EQ(LineFile::GetLineNo(0), 0u);
}

TEST_F(LineFileTest, KeepsEveryLineNumber)
{
    for (const unsigned line : {0u, 1u, 65536u, 0xFFFFFFFFu}) {
        const linefile_type handle = LineFile::EncodeLineFile("f.v", line);
        ASSERT_TRUE(handle);
        EXPECT_EQ(LineFile::GetLineNo(handle), line);
    }
}

TEST_F(LineFileTest, GivesOneFileOneHandlePerLine)
{
    const linefile_type first = LineFile::EncodeLineFile("a.v", 1);
    const linefile_type other = LineFile::EncodeLineFile("b.v", 1);
    EXPECT_NE(first, other);
    EXPECT_EQ(LineFile::EncodeLineFile("a.v", 1), first);
    EXPECT_EQ(LineFile::EncodeLineFile("b.v", 1), other);
    EXPECT_EQ(LineFile::OtherLine(first, 9), LineFile::EncodeLineFile("a.v", 9));
}

TEST_F(LineFileTest, KeepsAnAbsolutePathThatWasGiven)
{
    const linefile_type there = LineFile::EncodeLineFile("a.v", "/there/a.v", 5);
    const linefile_type unknown = LineFile::EncodeLineFile("a.v", nullptr, 5);
    const linefile_type here = LineFile::EncodeLineFile("a.v", 5);
    EXPECT_STREQ(LineFile::GetAbsFileName(there), "/there/a.v");
    EXPECT_EQ(LineFile::GetAbsFileName(unknown), nullptr);
    EXPECT_EQ(LineFile::GetAbsFileName(here), (std::filesystem::current_path() / "a.v").string());
    EXPECT_STREQ(LineFile::GetFileName(unknown), "a.v");
    EXPECT_EQ(LineFile::GetLineNo(unknown), 5u);
}

TEST_F(LineFileTest, ForgetsFilesWithoutConfusingOldHandlesWithNewOnes)
{
    const linefile_type old = LineFile::EncodeLineFile("old.v", 7);
    LineFile::DeleteAllLineFiles();
    EXPECT_EQ(LineFile::GetAbsFileName(old), nullptr);
    EXPECT_EQ(LineFile::GetFileName(old), nullptr);
    EXPECT_EQ(LineFile::GetLineNo(old), 0u);
    const linefile_type fresh = LineFile::EncodeLineFile("new.v", 7);
    EXPECT_NE(fresh, old);
    EXPECT_EQ(LineFile::GetFileName(old), nullptr);
    EXPECT_STREQ(LineFile::GetFileName(fresh), "new.v");
}

TEST_F(LineFileTest, KeepsHandlesWhenOnlyTheNumberingIsReset)
{
    const linefile_type before = LineFile::EncodeLineFile("a.v", 7);
    LineFile::ResetFileIdMaps();
    const linefile_type after = LineFile::EncodeLineFile("a.v", 7);
    EXPECT_STREQ(LineFile::GetFileName(before), "a.v");
    EXPECT_EQ(LineFile::GetLineNo(before), 7u);
    EXPECT_STREQ(LineFile::GetFileName(after), "a.v");
    EXPECT_NE(before, after);
}

TEST_F(LineFileTest, HandsOutTextsThatStayWhereTheyAre)
{
    const linefile_type first = LineFile::EncodeLineFile("first.v", 1);
    const char *name = LineFile::GetFileName(first);
    for (int i = 0; i < 10000; ++i) {
        LineFile::EncodeLineFile(("f" + std::to_string(i) + ".v").c_str(), 1);
    }
    EXPECT_EQ(LineFile::GetFileName(first), name);
    EXPECT_STREQ(name, "first.v");
}

} // namespace
