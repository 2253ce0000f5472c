#include "tests/unit/analysis/MapTest.h"

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBNet.h>

#include <thread>

namespace analysis_test {

namespace analysis = kvr::netlistdb::analysis;

namespace {

class ClockMapUse : public MapTest {};

constexpr const char *DESIGN = R"(
    register DFF(in d, clk, out q) clock=clk end
    module leaf(in ck, d, out q)
        r: DFF(clk=ck, d=d, q=q)
    end
    module top(in clk, d, out q)
        u: leaf(ck=clk, d=d, q=q)
    end)";

template <typename Exception, typename Call> std::string messageOf(Call call)
{
    try {
        call();
    } catch (const Exception &error) {
        return error.what();
    }
    return "nothing thrown";
}

TEST_F(ClockMapUse, ASourceThatIsNotThereIsRefused)
{
    const auto build = [&] { ClockMap(*database, ELABORATED); };
    EXPECT_EQ(messageOf<std::invalid_argument>(build), "ClockMap: the source is not loaded");
    const auto buildUnknown = [&] { ClockMap(*database, static_cast<IDesignDatabase::SOURCE_TYPE>(7)); };
    EXPECT_EQ(messageOf<std::invalid_argument>(buildUnknown), "ClockMap: the source is not loaded");
    DesignDatabase forgetful(false);
    forgetful.parseElaboratedNetlist(testsupport::netlistFromText(DESIGN));
    const auto buildForgetful = [&] { ClockMap(forgetful, ELABORATED); };
    EXPECT_EQ(messageOf<std::invalid_argument>(buildForgetful), "ClockMap: the database keeps no source netlists");
}

TEST_F(ClockMapUse, EveryQuestionIsRefusedAfterAResetOrAnotherImport)
{
    const std::string refusal = "ClockMap: the source has been reset or imported anew";
    elaboratedMap(DESIGN);
    postMap("module other(in a) end");
    EXPECT_EQ(map->clocks().size(), 1U) << "the other source does not matter";
    IVDBInstance *const root = instanceOf("");
    IVDBNet *const net = netIn("", "q");
    const auto refusesAll = [&] {
        EXPECT_EQ(messageOf<std::logic_error>([&] { static_cast<void>(map->clocks()); }), refusal);
        EXPECT_EQ(messageOf<std::logic_error>([&] { static_cast<void>(map->find("clk")); }), refusal);
        EXPECT_EQ(messageOf<std::logic_error>([&] { map->launch(root, net); }), refusal);
        EXPECT_EQ(messageOf<std::logic_error>([&] { map->capture(root, net); }), refusal);
        EXPECT_EQ(messageOf<std::logic_error>([&] { map->electrical(root, net); }), refusal);
        EXPECT_EQ(messageOf<std::logic_error>([&] { map->why(root, net); }), refusal);
        EXPECT_EQ(messageOf<std::logic_error>([&] { static_cast<void>(map->related(0, 0)); }), refusal);
        EXPECT_EQ(messageOf<std::logic_error>([&] { map->countNets(); }), refusal);
        EXPECT_EQ(messageOf<std::logic_error>([&] { static_cast<void>(map->memory()); }), refusal);
    };
    database->parseElaboratedNetlist(testsupport::netlistOfCell("top"));
    refusesAll();
    map = std::make_unique<ClockMap>(*database, ELABORATED);
    database->reset(ELABORATED);
    refusesAll();
    database->parseElaboratedNetlist(testsupport::netlistOfCell("top"));
    refusesAll();
}

TEST_F(ClockMapUse, WhatIsNoPartOfTheSourceIsRefused)
{
    elaboratedMap(DESIGN);
    IVDBInstance *const root = instanceOf("");
    const std::unique_ptr<Verific::Net> loose(new Verific::Net("loose"));
    const kvr::netlistdb::VDBNet foreignNet(loose.get());
    kvr::netlistdb::VDBInstance foreignInstance(root->getModule(), nullptr);
    const auto refused = [&](const IVDBInstance *inst, const IVDBNet *net) {
        return messageOf<std::invalid_argument>([&] { map->launch(inst, net); });
    };
    EXPECT_EQ(refused(root, nullptr), "ClockMap: the net is no net of the source");
    EXPECT_EQ(refused(root, &foreignNet), "ClockMap: the net is no net of the source");
    EXPECT_EQ(refused(nullptr, netIn("", "q")), "ClockMap: the instance is no instance of the source");
    EXPECT_EQ(refused(&foreignInstance, netIn("", "q")), "ClockMap: the instance is no instance of the source");
    EXPECT_EQ(refused(root, netIn("u", "q")), "ClockMap: the net is no net of the instance");
}

TEST_F(ClockMapUse, TheInsideOfABlackBoxIsNotKnown)
{
    elaboratedMap(R"(
        register DFF(in d, clk, out q) clock=clk end
        module box(in ck, d, out q) blackbox
            r: DFF(clk=ck, d=d, q=q)
        end
        module top(in clk, d, out q)
            u: box(ck=clk, d=d, q=q)
        end)");
    EXPECT_EQ(launch("q"), "| box");
    EXPECT_EQ(launch("q", "u"), "| box");
    EXPECT_EQ(capture("d", "u"), "| box");
    EXPECT_EQ(electrical("q", "u"), "black-box u/q");
    ASSERT_EQ(map->why(instanceOf("u"), netIn("u", "q")).ends.size(), 1U);
}

TEST_F(ClockMapUse, InstancesBelowAPostMapModuleAreFollowedThoughTheTreeHasNone)
{
    postMapMap(R"(
        module inner(in ck, d, out q)
            g: KVR_FF(C=div, D=d, Q=q)
            r: KVR_FF(C=ck, D=d, Q=div)
        end
        module outer(in ck, d, out q)
            i: inner(ck=ck, d=d, q=q)
        end
        module top(in clk, d, out q)
            u: outer(ck=clk, d=d, q=q)
        end)");
    EXPECT_EQ(launch("q"), "u/i/div:0");
    EXPECT_EQ(clocks(), "clk port rise 1\nu/i/div register rise 1 <- clk\n");
    EXPECT_EQ(map->clocks()[1].instance, nullptr);
    const analysis::LaunchProof proof = map->why(instanceOf(""), netIn("", "q"));
    ASSERT_EQ(proof.clocks.size(), 1U);
    EXPECT_EQ(proof.clocks[0].data.back().cell, "u/i/g");
}

TEST_F(ClockMapUse, AMapMovesAndNamesLeadToItsClocks)
{
    elaboratedMap(DESIGN);
    ClockMap moved(std::move(*map));
    EXPECT_EQ(moved.clocks().size(), 1U);
    EXPECT_EQ(moved.find("clk"), 0U);
    EXPECT_FALSE(moved.find("u/ck").has_value());
    EXPECT_GT(moved.memory(), 0U);
    EXPECT_EQ(moved.countNets().launched, std::vector<std::uint64_t>{2});
}

TEST_F(ClockMapUse, ManyThreadsMayAskAtATime)
{
    elaboratedMap(DESIGN);
    const std::string expected = launch("q");
    std::vector<std::thread> threads;
    std::vector<char> same(4, 1);
    for (std::size_t thread = 0; thread < same.size(); ++thread) {
        threads.emplace_back([&, thread] {
            for (unsigned round = 0; round < 200; ++round) {
                map->why(instanceOf("u"), netIn("u", "q"));
                same[thread] = same[thread] != 0 && launch("q") == expected ? 1 : 0;
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(same, std::vector<char>(4, 1));
}

TEST_F(ClockMapUse, AnInstanceWithoutViewIsNoCell)
{
    elaboratedMap("module top(in a, out b)\n x: ?\n connect b=a\n end");
    EXPECT_EQ(launch("a"), "| port");
}

TEST_F(ClockMapUse, AModuleThatContainsItselfIsABlackBoxThere)
{
    testsupport::netlistFromText("module again(in a, out b) end module top(in a, out b) u: again(a=a, b=b) end");
    Verific::Netlist *const again = testsupport::netlistOfCell("again");
    auto *const inner = new Verific::Instance("inner", again);
    again->Add(inner);
    inner->Connect(again->GetPort("a"), again->GetNet("a"));
    inner->Connect(again->GetPort("b"), again->GetNet("b"));
    database->parsePostMapNetlist(testsupport::netlistOfCell("top"));
    source = POST_MAP;
    map = std::make_unique<ClockMap>(*database, POST_MAP);
    EXPECT_EQ(launch("b"), "| box");
    EXPECT_EQ(capture("a"), "| box");
}

} // namespace
} // namespace analysis_test
