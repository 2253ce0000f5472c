#include <netlistdb/BFSItemIterator.h>
#include <netlistdb/DesignDatabase.h>
#include <netlistdb/IVDBResultSet.h>
#include <netlistdb/VDBHelper.h>

#include "RandomSearch.h"
#include "ReferenceSearch.h"
#include "WalkText.h"
#include "search/CaseFold.h"
#include "search/FullNameText.h"
#include "search/RequiredText.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <regex>

namespace kvr::netlistdb {
namespace {

using testsupport::below;
using testsupport::randomText;
using testsupport::RandomTree;
using testsupport::ReferenceIterator;
using testsupport::wordOf;

constexpr const char *patternAlphabet = "aaabbbAB001_//.^$*+?{}[]()|\\-,";

/// The message of what a call throws, empty when it throws nothing.
template <typename Call> std::string thrownBy(Call call)
{
    try {
        call();
    } catch (const std::exception &error) {
        return error.what();
    }
    return "";
}

TEST(Walk, AgreesWithAQueueThatHoldsEveryItem)
{
    for (unsigned seed = 0; seed < 5000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const RandomTree tree(random, true);
        const VDBSearchParam param = testsupport::randomRecord(random, tree);
        const bool fetches = below(random, 4) == 0;
        ReferenceIterator expected(param);
        BFSItemIterator walk(nullptr, param);
        for (int step = 0; step < 300; ++step) {
            ASSERT_EQ(walk.isEnd(), expected.isEnd());
            ASSERT_EQ(walk.getCurrent(), expected.getCurrent())
                << wordOf(walk.getCurrent()) << " instead of " << wordOf(expected.getCurrent());
            if (fetches && below(random, 8) == 0) {
                IVDBItem *item = tree.instances[below(random, static_cast<unsigned>(tree.instances.size()))];
                ASSERT_EQ(thrownBy([&] { walk.fetchMoreItem(item); }), thrownBy([&] { expected.fetchMoreItem(item); }));
                continue;
            }
            const std::string fault = thrownBy([&] { expected.next(); });
            ASSERT_EQ(thrownBy([&] { walk.next(); }), fault);
            if (!fault.empty()) {
                ASSERT_EQ(walk.getCurrent(), expected.getCurrent());
                break;
            }
        }
    }
}

TEST(Walk, AgreesWithAQueueThatHoldsEveryItemWhateverMovesIt)
{
    for (unsigned seed = 0; seed < 5000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const RandomTree tree(random, false);
        const VDBSearchParam param = testsupport::randomRecord(random, tree);
        ReferenceIterator expected(param);
        BFSItemIterator walk(nullptr, param);
        const std::regex expression("a.*b");
        const auto move = [&](TreeIterator &iterator, unsigned way) {
            switch (way) {
            case 0:
                return VDBHelper::matchAllNet(&iterator);
            case 1:
                return VDBHelper::matchNet(&iterator, "aB", true);
            case 2:
                return VDBHelper::matchNetRegex(&iterator, expression);
            case 3:
                return iterator.isEnd();
            default:
                iterator.next();
                return true;
            }
        };
        for (int step = 0; step < 100; ++step) {
            const unsigned way = below(random, 8);
            // A net by hand has no context before the first instance was reported.
            if (expected.getContext() == nullptr && way != 0) {
                continue;
            }
            ASSERT_EQ(move(walk, way), move(expected, way));
            ASSERT_EQ(walk.getContext(), expected.getContext());
            if (below(random, 2) == 0) {
                ASSERT_EQ(walk.getCurrent(), expected.getCurrent());
            }
        }
    }
}

TEST(Search, AgreesWithFullNamesWrittenOut)
{
    DesignDatabase database(false);
    unsigned hits = 0;
    unsigned misses = 0;
    for (unsigned seed = 0; seed < 5000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const RandomTree tree(random, false);
        VDBSearchParam param = testsupport::randomRecord(random, tree);
        param.filterByName = below(random, 8) != 0;
        param.useRegex = below(random, 3) != 0;
        param.ignoreCase = below(random, 2) == 0;
        param.pattern = randomText(random, param.useRegex ? patternAlphabet : "abAB01/_", 6);
        if (param.filterByName && param.useRegex && !thrownBy([&param] { std::regex(param.pattern); }).empty()) {
            continue;
        }
        ReferenceIterator expected(param);
        const std::unique_ptr<IVDBResultSet> results(database.search(param));
        for (bool found = testsupport::referenceMatch(expected, param); found;
             expected.next(), found = testsupport::referenceMatch(expected, param)) {
            results->next();
            ASSERT_EQ(results->status(), RESULT_MATCH) << "misses " << wordOf(expected.getCurrent());
            ASSERT_EQ(results->getCurrent(), expected.getCurrent())
                << "pattern " << param.pattern << ": " << wordOf(results->getCurrent()) << " instead of "
                << wordOf(expected.getCurrent());
            ASSERT_EQ(results->getContext(), expected.getContext());
            ++(results->getCurrent()->getItemType() == ITEM_INSTANCE ? misses : hits);
        }
        results->next();
        ASSERT_EQ(results->status(), RESULT_NONE) << wordOf(results->getCurrent()) << " for " << param.pattern;
        ASSERT_EQ(results->getCurrent(), nullptr);
    }
    EXPECT_GT(hits, 1000U);
    EXPECT_GT(misses, 1000U);
}

TEST(FullNameText, AgreesWithASearchInTheWholeName)
{
    unsigned crossing = 0;
    for (unsigned seed = 0; seed < 25000; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const std::string alphabet = below(random, 2) == 0 ? "ab/" : "aAbB/\x80\xC0\xE0";
        const testsupport::MockInstance first(randomText(random, alphabet, 6), nullptr, nullptr);
        const testsupport::MockInstance second(randomText(random, alphabet, 6), nullptr, nullptr);
        std::string pattern = randomText(random, alphabet, 6);
        const bool folds = below(random, 2) == 0;
        CaseFold fold;
        FullNameText text(pattern, folds ? std::optional(fold) : std::nullopt);
        for (const testsupport::MockInstance *instance : {&first, &second}) {
            text.enter(*instance);
            for (int i = 0; i < 3; ++i) {
                const std::string name = randomText(random, alphabet, 6);
                const std::string path = instance->getPath();
                std::string full = path.empty() ? name : path + "/" + name;
                std::string sought = pattern;
                if (folds) {
                    fold.fold(std::string(full), full);
                    fold.fold(std::string(sought), sought);
                }
                const bool expected = full.find(sought) != std::string::npos;
                ASSERT_EQ(text(name), expected) << pattern << " in " << full;
                crossing += expected && full.find(sought) < full.size() - name.size() &&
                                    full.find(sought) + sought.size() > full.size() - name.size()
                                ? 1
                                : 0;
            }
        }
    }
    EXPECT_GT(crossing, 1000U);
}

TEST(RequiredText, StandsInEverythingThatTheExpressionFinds)
{
    unsigned found = 0;
    for (unsigned seed = 0; seed < 25000; ++seed) {
        std::mt19937 random(seed);
        const std::string pattern = randomText(random, patternAlphabet, 8);
        const std::string required = requiredText(pattern);
        if (required.empty()) {
            continue;
        }
        const bool ignoreCase = below(random, 2) == 0;
        std::optional<std::regex> expression;
        try {
            expression.emplace(pattern, ignoreCase ? std::regex::icase : std::regex::ECMAScript);
        } catch (const std::regex_error &) {
            continue;
        }
        const std::locale locale = expression->getloc();
        CaseFold fold(locale);
        for (int i = 0; i < 8; ++i) {
            std::string name = randomText(random, "abAB01_/[]{}-,.$", 4) + required.substr(below(random, 2)) +
                               randomText(random, "abAB01_/[]{}-,.$", 4);
            std::smatch match;
            if (!std::regex_search(name, match, *expression, std::regex_constants::match_any)) {
                continue;
            }
            ++found;
            std::string text = required;
            if (ignoreCase) {
                fold.fold(std::string(name), name);
                fold.fold(std::string(text), text);
            }
            ASSERT_NE(name.find(text), std::string::npos)
                << "seed " << seed << ": " << pattern << " finds " << name << " without " << required;
        }
    }
    EXPECT_GT(found, 1000U);
}

} // namespace
} // namespace kvr::netlistdb
