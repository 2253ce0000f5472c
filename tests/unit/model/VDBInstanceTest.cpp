#include "tests/support/LibsetGuard.h"
#include "tests/support/NetlistText.h"
#include "tests/support/RecordingItems.h"
#include "tests/support/Throws.h"

#include <netlistdb/VDBInstance.h>
#include <netlistdb/VDBLiveItems.h>
#include <netlistdb/VDBNetlist.h>

#include <DataBase.h>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace kvr::netlistdb {
namespace {

using testsupport::Log;
using testsupport::messageOf;
using testsupport::RecordingInstance;

/// A child of that name, owned by @p owner.
VDBInstance *addChild(IVDBInstance *owner, const char *name)
{
    const Verific::Instance source(name, nullptr);
    auto *child = new VDBInstance(nullptr, owner, &source);
    owner->addSubInstance(child);
    return child;
}

TEST(VDBInstance, RefusesANullInstance)
{
    EXPECT_EQ(messageOf<std::invalid_argument>([] { VDBInstance item(nullptr, nullptr, nullptr); }), "inst is nullptr");
}

TEST(VDBInstance, RootHasNoNameNoPathNoParametersAndDepthZero)
{
    const Verific::Netlist source("netlist");
    VDBNetlist module(&source, "", "");
    const VDBInstance root(&module, nullptr);
    EXPECT_EQ(root.getDepth(), 0u);
    EXPECT_EQ(root.getName(), "");
    EXPECT_EQ(root.getPath(), "");
    EXPECT_EQ(root.getParameterCount(), 0u);
    EXPECT_EQ(root.getModule(), &module);
    EXPECT_EQ(root.getOwnerInstance(), nullptr);
    EXPECT_TRUE(root.getSubInstances().empty());
}

TEST(VDBInstance, RootFormUnderAnOwnerStillHasDepthZero)
{
    VDBInstance root(nullptr, nullptr);
    VDBInstance *u1 = addChild(&root, "u1");
    const VDBInstance nested(nullptr, u1);
    EXPECT_EQ(nested.getOwnerInstance(), u1);
    EXPECT_EQ(nested.getDepth(), 0u);
    EXPECT_EQ(nested.getPath(), "u1/");
}

TEST(VDBInstance, RootFormDoesNotLookAtItsOwner)
{
    alignas(VDBInstance) char storage[sizeof(VDBInstance)] = {};
    auto *noInstance = reinterpret_cast<VDBInstance *>(storage);
    const VDBInstance root(nullptr, noInstance);
    EXPECT_EQ(root.getOwnerInstance(), static_cast<IVDBInstance *>(noInstance));
}

TEST(VDBInstance, DepthIsTheNumberOfAncestors)
{
    VDBInstance root(nullptr, nullptr);
    const VDBInstance *u3 = addChild(addChild(addChild(&root, "u1"), "u2"), "u3");
    EXPECT_EQ(root.getSubInstances()[0]->getDepth(), 1u);
    EXPECT_EQ(u3->getDepth(), 3u);
    const Verific::Instance source("alone", nullptr);
    EXPECT_EQ(VDBInstance(nullptr, nullptr, &source).getDepth(), 0u);
}

TEST(VDBInstance, DepthIsCountedWhateverTheAncestorsRecord)
{
    Log log;
    VDBInstance root(nullptr, nullptr);
    auto *u1 = addChild(&root, "u1");
    auto *zero = new VDBInstance(nullptr, u1); // records depth 0, has two ancestors
    u1->addSubInstance(zero);
    EXPECT_EQ(addChild(zero, "u3")->getDepth(), 3u);
    EXPECT_EQ(addChild(zero->getSubInstances()[0], "u4")->getDepth(), 4u);

    auto *foreign = new RecordingInstance(log, "foreign", &root); // records depth 1000
    root.addSubInstance(foreign);
    VDBInstance *below = addChild(foreign, "below");
    EXPECT_EQ(below->getDepth(), 2u);
    foreign->setOwner(u1);
    EXPECT_EQ(addChild(below, "deeper")->getDepth(), 4u) << "the chain is walked as it stands now";
    foreign->setOwner(&root);
}

TEST(VDBInstance, TakesItsNameAndDoesWithoutOne)
{
    const Verific::Instance named("u_core/\\odd name", nullptr);
    const Verific::Instance nameless(nullptr, nullptr);
    EXPECT_EQ(VDBInstance(nullptr, nullptr, &named).getName(), "u_core/\\odd name");
    EXPECT_EQ(VDBInstance(nullptr, nullptr, &nameless).getName(), "");
}

TEST(VDBInstance, CountsTheParametersOfItsSource)
{
    Verific::Instance source("u1", nullptr);
    EXPECT_EQ(VDBInstance(nullptr, nullptr, &source).getParameterCount(), 0u);
    source.AddParam("WIDTH", "8");
    source.AddParam("DEPTH", "16");
    source.AddParam("WIDTH", "4");
    EXPECT_EQ(VDBInstance(nullptr, nullptr, &source).getParameterCount(), 2u);
}

TEST(VDBInstance, CountsNoParametersWithoutAMap)
{
    class WithoutMap : public Verific::Instance {
      public:
        WithoutMap() : Instance("u1", nullptr) {}
        Verific::Map *GetParameters() const override { return nullptr; }
    };
    class WithEmptyMap : public Verific::Instance {
      public:
        WithEmptyMap() : Instance("u1", nullptr) {}
        Verific::Map *GetParameters() const override { return &m_map; }

      private:
        mutable Verific::Map m_map;
    };
    const WithoutMap without;
    const WithEmptyMap empty;
    EXPECT_EQ(VDBInstance(nullptr, nullptr, &without).getParameterCount(), 0u);
    EXPECT_EQ(VDBInstance(nullptr, nullptr, &empty).getParameterCount(), 0u);
}

TEST(VDBInstance, PathJoinsTheNamesBelowTheRoot)
{
    VDBInstance root(nullptr, nullptr);
    VDBInstance *u1 = addChild(&root, "u1");
    EXPECT_EQ(u1->getPath(), "u1");
    EXPECT_EQ(addChild(u1, "r0")->getPath(), "u1/r0");
    EXPECT_EQ(addChild(u1, "a/b")->getPath(), "u1/a/b") << "names are not escaped";
}

TEST(VDBInstance, PathSkipsEveryAncestorWithoutName)
{
    VDBInstance root(nullptr, nullptr);
    VDBInstance *leaf = addChild(addChild(addChild(addChild(&root, ""), "u1"), ""), "leaf");
    EXPECT_EQ(leaf->getPath(), "u1/leaf");
}

TEST(VDBInstance, PathOfANamelessInstanceEndsWithTheSeparator)
{
    VDBInstance root(nullptr, nullptr);
    EXPECT_EQ(addChild(addChild(&root, "u1"), "")->getPath(), "u1/");
    EXPECT_EQ(addChild(addChild(&root, ""), "")->getPath(), "");
}

TEST(VDBInstance, AddingAChildChecksNothing)
{
    Log log;
    auto *child = new RecordingInstance(log, "u1", nullptr);
    VDBInstance owner(nullptr, nullptr);
    EXPECT_TRUE(owner.addSubInstance(child));
    EXPECT_TRUE(owner.addSubInstance(nullptr));
    EXPECT_TRUE(owner.addSubInstance(child)) << "also for a child that is there already";
    EXPECT_EQ(owner.getSubInstances(), (std::vector<IVDBInstance *>{child, nullptr, child}));
    EXPECT_EQ(child->getOwnerInstance(), nullptr) << "the child's owner is not set";
    const_cast<std::vector<IVDBInstance *> &>(owner.getSubInstances()).pop_back();
}

TEST(VDBInstance, ReservingAddsNoChild)
{
    VDBInstance owner(nullptr, nullptr);
    owner.reserveSubInstances(100);
    EXPECT_TRUE(owner.getSubInstances().empty());
    EXPECT_GE(owner.getSubInstances().capacity(), 100u);
}

TEST(VDBInstance, DeletesTheTreeFrontToBackWithOwnersAliveAndSkipsNulls)
{
    Log log;
    {
        VDBInstance root(nullptr, nullptr);
        VDBInstance *u1 = addChild(&root, "u1");
        VDBInstance *u2 = addChild(u1, "u2");
        u2->addSubInstance(new RecordingInstance(log, "a", u2));
        u2->addSubInstance(new RecordingInstance(log, "b", u2));
        u1->addSubInstance(nullptr);
        u1->addSubInstance(new RecordingInstance(log, "c", u1));
        root.addSubInstance(nullptr);
        auto *foreign = new RecordingInstance(log, "d", &root);
        root.addSubInstance(foreign);
        VDBInstance *u3 = addChild(foreign, "u3");
        u3->addSubInstance(new RecordingInstance(log, "e", u3));
    }
    EXPECT_EQ(log, (Log{"a of u2", "b of u2", "c of u1", "d of ", "e of u3"}));
}

TEST(VDBInstance, OwnersForgetTheirOwnerAndModuleBeforeTheirChildrenGo)
{
    class Watcher : public RecordingInstance {
      public:
        Watcher(Log &log, IVDBInstance *owner, bool &forgotten)
            : RecordingInstance(log, "w", owner), m_forgotten(forgotten)
        {
        }
        ~Watcher() override
        {
            m_forgotten =
                getOwnerInstance()->getOwnerInstance() == nullptr && getOwnerInstance()->getModule() == nullptr;
        }

      private:
        bool &m_forgotten;
    };
    const Verific::Netlist source("netlist");
    VDBNetlist module(&source, "", "");
    const Verific::Instance u1Source("u1", nullptr);
    bool forgotten = false;
    Log log;
    {
        VDBInstance root(nullptr, nullptr);
        auto *u1 = new VDBInstance(&module, &root, &u1Source);
        root.addSubInstance(u1);
        u1->addSubInstance(new Watcher(log, u1, forgotten));
    }
    EXPECT_TRUE(forgotten);
}

TEST(VDBInstance, RunsTheDestructorsOfDerivedClasses)
{
    class Derived : public VDBInstance {
      public:
        Derived(IVDBInstance *owner, const Verific::Instance *inst, Log &log)
            : VDBInstance(nullptr, owner, inst), m_log(log)
        {
        }
        ~Derived() override { m_log.push_back(getPath() + " with " + std::to_string(getSubInstances().size())); }

      private:
        Log &m_log;
    };
    const Verific::Instance source("d", nullptr);
    Log log;
    const auto before = liveItemCounts();
    {
        VDBInstance root(nullptr, nullptr);
        auto *outer = new Derived(&root, &source, log);
        root.addSubInstance(outer);
        auto *inner = new Derived(outer, &source, log);
        outer->addSubInstance(inner);
        addChild(inner, "leaf");
    }
    EXPECT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0], "d with 1");
    EXPECT_EQ(log[1].substr(log[1].size() - 6), "with 1");
    EXPECT_EQ(liveItemCounts(), before);
}

TEST(VDBInstance, BuildsAndDeletesTreesDeeperThanTheStack)
{
    const auto before = liveItemCounts();
    const Verific::Instance source("u", nullptr);
    auto *root = new VDBInstance(nullptr, nullptr);
    IVDBInstance *deepest = root;
    constexpr unsigned LEVELS = 300000;
    for (unsigned level = 0; level < LEVELS; ++level) {
        auto *child = new VDBInstance(nullptr, deepest, &source);
        deepest->addSubInstance(child);
        deepest = child;
    }
    EXPECT_EQ(deepest->getDepth(), LEVELS);
    delete static_cast<IVDBItem *>(root);
    EXPECT_EQ(liveItemCounts(), before);
}

} // namespace
} // namespace kvr::netlistdb
