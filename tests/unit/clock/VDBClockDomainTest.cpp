#include "ClockTest.h"

#include <netlistdb/VDBClockDomain.h>
#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBNet.h>

#include <stdexcept>

namespace clock_test {
namespace {

using kvr::netlistdb::VDBClockDomain;
using kvr::netlistdb::VDBInstance;
using kvr::netlistdb::VDBNet;

class VDBClockDomainTest : public ::testing::Test {
  protected:
    Verific::Net verificNet{"clk"};
    VDBNet net{&verificNet};
    VDBInstance root{nullptr, nullptr};
};

std::string messageOf(IVDBNet *net, IVDBInstance *instance)
{
    try {
        const VDBClockDomain domain(net, instance);
    } catch (const std::invalid_argument &error) {
        return error.what();
    }
    return "nothing thrown";
}

TEST_F(VDBClockDomainTest, UnderAnInstanceWithoutPathHasTheNameOfTheNet)
{
    const VDBClockDomain domain(&net, &root);
    EXPECT_EQ(domain.getName(), "clk");
}

TEST_F(VDBClockDomainTest, UnderAnInstanceWithPathHasPathAndNetInItsName)
{
    const Verific::Instance first("top", nullptr);
    const Verific::Instance second("u1", nullptr);
    VDBInstance top(nullptr, &root, &first);
    VDBInstance below(nullptr, &top, &second);
    const VDBClockDomain domain(&net, &below);
    EXPECT_EQ(domain.getName(), "top/u1/clk");
}

TEST_F(VDBClockDomainTest, EscapesNothingInItsName)
{
    const Verific::Instance odd("a/b", nullptr);
    const Verific::Net slashed("c/d[0]");
    VDBInstance below(nullptr, &root, &odd);
    VDBNet slashedNet(&slashed);
    EXPECT_EQ(VDBClockDomain(&slashedNet, &below).getName(), "a/b/c/d[0]");
}

TEST_F(VDBClockDomainTest, OfANamelessNetEndsWithTheSeparatorOrIsEmpty)
{
    const Verific::Instance named("u1", nullptr);
    const Verific::Net nameless(nullptr);
    VDBInstance below(nullptr, &root, &named);
    VDBNet namelessNet(&nameless);
    EXPECT_EQ(VDBClockDomain(&namelessNet, &below).getName(), "u1/");
    EXPECT_EQ(VDBClockDomain(&namelessNet, &root).getName(), "");
}

TEST_F(VDBClockDomainTest, KeepsItsNetAndInstanceAndIsOfTheClockDomainKind)
{
    const std::unique_ptr<IClockDomain> domain = std::make_unique<VDBClockDomain>(&net, &root);
    EXPECT_EQ(domain->getNet(), &net);
    EXPECT_EQ(domain->getInstance(), &root);
    EXPECT_EQ(domain->getItemType(), 16U);
}

TEST_F(VDBClockDomainTest, RefusesNullArgumentsAndReportsTheNetFirst)
{
    EXPECT_EQ(messageOf(nullptr, nullptr), "VDBClockDomain: net is nullptr");
    EXPECT_EQ(messageOf(nullptr, &root), "VDBClockDomain: net is nullptr");
    EXPECT_EQ(messageOf(&net, nullptr), "VDBClockDomain: inst is nullptr");
}

TEST_F(VDBClockDomainTest, KeepsTheNameItWasMadeWith)
{
    const Verific::Instance named("u1", nullptr);
    auto below = std::make_unique<VDBInstance>(nullptr, &root, &named);
    const VDBClockDomain domain(&net, below.get());
    below.reset();
    EXPECT_EQ(domain.getName(), "u1/clk");
}

} // namespace
} // namespace clock_test
