#include <netlistdb/VDBHelper.h>

#include "tests/support/ListIterator.h"
#include "tests/support/MockItems.h"
#include "tests/support/Throws.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace kvr::netlistdb {
namespace {

using testsupport::ListIterator;
using testsupport::messageOf;
using testsupport::MockInstance;
using testsupport::MockNetlist;
using testsupport::MockPort;

/// The matchers of one kind with items of that kind called `u1`, `u1_a` and `U2`, and one of another kind.
struct Kind {
    const char *name;
    bool (*plain)(TreeIterator *, const std::string &, bool);
    bool (*expression)(TreeIterator *, const std::regex &);
    std::vector<IVDBItem *> items;
    IVDBItem *other;
};

void PrintTo(const Kind &kind, std::ostream *out)
{
    *out << kind.name;
}

Kind instances()
{
    static MockInstance u1("u1", nullptr, nullptr);
    static MockInstance u1a("u1_a", nullptr, &u1);
    static MockInstance u2("U2", nullptr, nullptr);
    static MockPort other("u1");
    return {"instances", VDBHelper::matchInstance, VDBHelper::matchInstanceRegex, {&u1, &u1a, &u2}, &other};
}

Kind netlists()
{
    static MockNetlist u1("u1", true);
    static MockNetlist u1a("u1_a", true);
    static MockNetlist u2("U2", true);
    static MockInstance other("u1", nullptr, nullptr);
    return {"netlists", VDBHelper::matchNetlist, VDBHelper::matchNetlistRegex, {&u1, &u1a, &u2}, &other};
}

Kind ports()
{
    static MockPort u1("u1");
    static MockPort u1a("u1_a");
    static MockPort u2("U2");
    static testsupport::MockNet other({"u1", true, 1, ITEM_NET});
    return {"ports", VDBHelper::matchPort, VDBHelper::matchPortRegex, {&u1, &u1a, &u2}, &other};
}

std::string reported(ListIterator iterator, const std::function<bool(TreeIterator *)> &match)
{
    std::string text;
    for (; match(&iterator); iterator.next()) {
        text += (text.empty() ? "" : " ") + iterator.getCurrent()->getName();
    }
    EXPECT_TRUE(iterator.isEnd());
    EXPECT_EQ(iterator.getContext(), nullptr) << "name matchers never set the context";
    return text;
}

class NameMatchersTest : public testing::TestWithParam<Kind> {
  protected:
    std::string plain(const std::string &pattern, bool ignoreCase = false) const
    {
        return reported(ListIterator(GetParam().items),
                        [&](TreeIterator *it) { return GetParam().plain(it, pattern, ignoreCase); });
    }

    std::string expression(const std::string &pattern) const
    {
        const std::regex regex(pattern);
        return reported(ListIterator(GetParam().items),
                        [&](TreeIterator *it) { return GetParam().expression(it, regex); });
    }
};

INSTANTIATE_TEST_SUITE_P(Kinds, NameMatchersTest, testing::Values(instances(), netlists(), ports()),
                         [](const auto &kind) { return std::string(kind.param.name); });

TEST_P(NameMatchersTest, FindPlainTextInTheName)
{
    EXPECT_EQ(plain("u1"), "u1 u1_a");
    EXPECT_EQ(plain("_"), "u1_a");
    EXPECT_EQ(plain(""), "u1 u1_a U2");
    EXPECT_EQ(plain("u1/u1_a"), "") << "the path is no part of the name";
}

TEST_P(NameMatchersTest, HeedCaseWhateverTheFlag)
{
    EXPECT_EQ(plain("u", true), "u1 u1_a");
    EXPECT_EQ(plain("u2", true), "");
    EXPECT_EQ(plain("U2", true), "U2");
}

TEST_P(NameMatchersTest, MatchExpressionsWithTheWholeName)
{
    EXPECT_EQ(expression("u1"), "u1");
    EXPECT_EQ(expression("u1.*"), "u1 u1_a");
    EXPECT_EQ(expression("U[0-9]"), "U2");
    EXPECT_EQ(expression(""), "");
}

TEST_P(NameMatchersTest, ThrowOnAnItemOfAnotherKindOrNullAndStayThere)
{
    for (IVDBItem *wrong : {GetParam().other, static_cast<IVDBItem *>(nullptr)}) {
        ListIterator iterator({GetParam().items[2], wrong, GetParam().items[0]});
        EXPECT_EQ(messageOf<std::runtime_error>([&] { GetParam().plain(&iterator, "u1", false); }),
                  "Unknown item iterated");
        EXPECT_EQ(iterator.getCurrent(), wrong);
        EXPECT_EQ(messageOf<std::runtime_error>([&] { GetParam().expression(&iterator, std::regex("u1")); }),
                  "Unknown item iterated");
        EXPECT_EQ(iterator.getCurrent(), wrong);
    }
}

TEST_P(NameMatchersTest, ReturnFalseAtTheEnd)
{
    ListIterator iterator({});
    EXPECT_FALSE(GetParam().plain(&iterator, "", false));
    EXPECT_FALSE(GetParam().expression(&iterator, std::regex("")));
}

TEST(MatchAll, ReportsTheCurrentItemWithoutMoving)
{
    MockPort port("p");
    ListIterator iterator({&port, nullptr});
    EXPECT_TRUE(VDBHelper::matchAll(&iterator));
    EXPECT_TRUE(VDBHelper::matchAll(&iterator));
    EXPECT_EQ(iterator.getCurrent(), &port);
    iterator.next();
    EXPECT_TRUE(VDBHelper::matchAll(&iterator)) << "whatever the item is";
    iterator.next();
    EXPECT_FALSE(VDBHelper::matchAll(&iterator));
    EXPECT_EQ(iterator.getContext(), nullptr);
}

} // namespace
} // namespace kvr::netlistdb
