#include "search/CaseFold.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

namespace kvr::netlistdb {
namespace {

std::string allBytes()
{
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

TEST(CaseFold, AgreesWithTheCLibraryBeforeAndAfterItHasATable)
{
    const std::string bytes = allBytes();
    std::string expected;
    for (const char c : bytes) {
        expected += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    CaseFold fold;
    std::string folded = "left from before";
    for (int round = 0; round < 4; ++round) {
        fold.fold(bytes, folded);
        EXPECT_EQ(folded, expected) << round;
    }
    fold.fold("", folded);
    EXPECT_EQ(folded, "");
}

TEST(CaseFold, AgreesWithTheFacetOfALocale)
{
    const std::locale locale = std::locale::classic();
    const std::string bytes = allBytes();
    std::string expected = bytes;
    std::use_facet<std::ctype<char>>(locale).tolower(expected.data(), expected.data() + expected.size());
    CaseFold fold(locale);
    std::string folded;
    fold.fold(bytes, folded);
    EXPECT_EQ(folded, expected);
}

} // namespace
} // namespace kvr::netlistdb
