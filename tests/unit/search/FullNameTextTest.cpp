#include "search/FullNameText.h"

#include "tests/support/MockItems.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace kvr::netlistdb;
using testsupport::MockInstance;
using testsupport::MockTree;

namespace {

/// All texts over @p letters with no more than @p longest of them, the empty one first.
std::vector<std::string> allTexts(const std::string &letters, std::size_t longest)
{
    std::vector<std::string> texts{""};
    for (std::size_t i = 0; i < texts.size() && texts[i].size() < longest; ++i) {
        for (const char letter : letters) {
            texts.push_back(texts[i] + letter);
        }
    }
    return texts;
}

TEST(FullNameText, AgreesWithTheWrittenOutNameForAllShortTexts)
{
    MockTree tree;
    const std::vector<std::string> netNames = allTexts("ab", 3);
    const std::vector<std::string> texts = allTexts("ab/", 5);
    for (const std::string &instanceName : netNames) {
        const MockInstance &instance = tree.instance(instanceName, nullptr);
        const std::string prefix = instanceName.empty() ? "" : instanceName + '/';
        for (const std::string &text : texts) {
            FullNameText asked(text);
            asked.enter(instance);
            for (const std::string &netName : netNames) {
                ASSERT_EQ(asked(netName), (prefix + netName).find(text) != std::string::npos)
                    << '"' << text << "\" in \"" << prefix << netName << '"';
            }
        }
    }
}

TEST(FullNameText, ForgetsTheInstanceBefore)
{
    MockTree tree;
    const std::string text = "ab/c";
    FullNameText asked(text);
    asked.enter(tree.instance("ab", nullptr));
    EXPECT_TRUE(asked("c"));
    asked.enter(tree.instance("b", nullptr));
    EXPECT_FALSE(asked("c"));
    asked.enter(tree.instance("ab/c", nullptr));
    EXPECT_TRUE(asked(""));
    asked.enter(tree.instance("a", nullptr));
    EXPECT_FALSE(asked("b/c"));
}

TEST(FullNameText, AgreesWithTheWrittenOutNameForLongRepetitiveTexts)
{
    MockTree tree;
    std::string path = "u";
    for (int level = 0; level < 2'000; ++level) {
        path += "/u";
    }
    const MockInstance &instance = tree.instance(path, nullptr);
    const std::string fullName = path + "/u/un";
    for (const std::string &text : {path + "/u/", path + "/u/un", path + "/uu", "u/" + path + "/u", path + "/un"}) {
        FullNameText asked(text);
        asked.enter(instance);
        EXPECT_EQ(asked("u/un"), fullName.find(text) != std::string::npos);
    }
}

} // namespace
