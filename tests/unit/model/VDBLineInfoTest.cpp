#include "model/SourcePosition.h"

#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"

#include <netlistdb/VDBLineInfo.h>
#include <netlistdb/VDBNet.h>

#include <DataBase.h>
#include <LineFile.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace kvr::netlistdb {
namespace {

using testsupport::LibsetGuard;

TEST(VDBLineInfo, KeepsACopyOfThePathAndAll64BitsOfTheLine)
{
    std::string path = "/work/top.v";
    const VDBLineInfo position(path, 0x1'0000'0001ull);
    path.clear();
    const IVDBLineInfo &seen = position;
    EXPECT_EQ(seen.getFilePath(), "/work/top.v");
    EXPECT_EQ(seen.getLineNumber(), 0x1'0000'0001ull);
}

TEST(SourcePaths, HoldEachPathOnce)
{
    SourcePaths paths;
    const auto first = paths.share("/work/top.v");
    const std::string same = "/work/top.v";
    EXPECT_EQ(paths.share(same.c_str()), first);
    const auto other = paths.share("/work/sub.v");
    EXPECT_EQ(*other, "/work/sub.v");
    EXPECT_EQ(paths.share(same.c_str()), first);
    EXPECT_EQ(*first, "/work/top.v");
}

TEST(SourcePaths, OutliveTheTableForThePositionsThatShareThem)
{
    std::unique_ptr<VDBLineInfo> position;
    {
        SourcePaths paths;
        position = std::make_unique<VDBLineInfo>(paths.share("/work/top.v"), 3);
    }
    EXPECT_EQ(position->getFilePath(), "/work/top.v");
}

TEST(SourcePosition, IsTheAbsoluteFileAndTheLine)
{
    LibsetGuard guard;
    Verific::Net source("n");
    source.SetLinefile(Verific::LineFile::EncodeLineFile("/rtl/top.v", 17));
    VDBNet net(&source);
    ASSERT_NE(net.getLineInfo(), nullptr);
    EXPECT_EQ(net.getLineInfo()->getFilePath(), "/rtl/top.v");
    EXPECT_EQ(net.getLineInfo()->getLineNumber(), 17u);

    Verific::Net relative("n");
    relative.SetLinefile(Verific::LineFile::EncodeLineFile("top.v", 1));
    VDBNet fromRelative(&relative);
    ASSERT_NE(fromRelative.getLineInfo(), nullptr);
    EXPECT_EQ(fromRelative.getLineInfo()->getFilePath(), Verific::LineFile::GetAbsFileName(relative.Linefile()));
    EXPECT_EQ(fromRelative.getLineInfo()->getFilePath().front(), '/');
}

TEST(SourcePosition, IsNoneWithoutHandle)
{
    Verific::Net source("n");
    ASSERT_FALSE(source.Linefile());
    EXPECT_EQ(VDBNet(&source).getLineInfo(), nullptr);
}

TEST(SourcePosition, IsNoneWhenTheFileIsNotKnown)
{
    LibsetGuard guard;
    Verific::Net source("n");
    source.SetLinefile(Verific::LineFile::EncodeLineFile("/rtl/top.v", 17));
    Verific::LineFile::DeleteAllLineFiles();
    ASSERT_TRUE(source.Linefile());
    EXPECT_EQ(VDBNet(&source).getLineInfo(), nullptr);
}

TEST(SourcePosition, KeepsTheLargestLineWithoutSign)
{
    LibsetGuard guard;
    Verific::Net source("n");
    source.SetLinefile(Verific::LineFile::EncodeLineFile("/rtl/top.v", 4294967295u));
    VDBNet net(&source);
    ASSERT_NE(net.getLineInfo(), nullptr);
    EXPECT_EQ(net.getLineInfo()->getLineNumber(), 4294967295ull);
}

TEST(SourcePosition, LivesOnWhenTheLineFileTablesAreCleared)
{
    LibsetGuard guard;
    Verific::Net source("n");
    source.SetLinefile(Verific::LineFile::EncodeLineFile("/rtl/top.v", 17));
    VDBNet net(&source);
    Verific::LineFile::DeleteAllLineFiles();
    Verific::LineFile::ResetFileIdMaps();
    EXPECT_EQ(net.getLineInfo()->getFilePath(), "/rtl/top.v");
}

} // namespace
} // namespace kvr::netlistdb
