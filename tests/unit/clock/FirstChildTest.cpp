#include "clock/FirstChild.h"
#include "clock/ItemLookup.h"

#include "ClockTest.h"

#include <netlistdb/VDBInstance.h>

#include <algorithm>
#include <random>

namespace clock_test {
namespace {

using kvr::netlistdb::FirstChild;
using kvr::netlistdb::ItemLookup;
using kvr::netlistdb::VDBInstance;

IVDBInstance *byWalking(const IVDBInstance *parent, const std::string &name)
{
    const std::vector<IVDBInstance *> &children = parent->getSubInstances();
    const auto found = std::find_if(children.begin(), children.end(), [&](const IVDBInstance *child) {
        return child != nullptr && child->getName() == name;
    });
    return found != children.end() ? *found : nullptr;
}

class FirstChildTest : public ClockTest {};

TEST_F(FirstChildTest, IsTheOneThatWalkingTheListFinds)
{
    std::mt19937 random(1);
    // Modules with few and with many children, some names several times.
    std::string text = "primitive BUF(in a, out o) end\n";
    for (const int size : {3, 8, 9, 40, 500}) {
        text += "module m" + std::to_string(size) + "(in a)\n";
        for (int at = 0; at < size; ++at) {
            text += "i" + std::to_string(random() % (2 * static_cast<unsigned>(size))) + ": BUF(a=a)\n";
        }
        text += "end\n";
    }
    text += "module top(in a)\n";
    for (const char *name : {"u", "v"}) {
        for (const int size : {3, 8, 9, 40, 500}) {
            text += name + std::to_string(size) + ": m" + std::to_string(size) + "(a=a)\n";
        }
    }
    elaborated((text + "end").c_str());
    const ItemLookup items(*database->objectPool(ELABORATED));
    IVDBInstance *const root = database->getRoot(ELABORATED);
    std::vector<IVDBInstance *> parents = root->getSubInstances();
    parents.push_back(root);
    const Verific::Instance *const named = copyOf(ELABORATED)->GetInst("u40");
    FirstChild first;
    for (int round = 0; round < 20'000; ++round) {
        IVDBInstance *const parent = parents[random() % parents.size()];
        if (random() % 500 == 0) {
            parent->addSubInstance(new VDBInstance(parent->getModule(), parent, named));
        }
        const unsigned names = 2 * static_cast<unsigned>(parent->getSubInstances().size());
        const std::string name = random() % 8 == 0 ? "u40" : "i" + std::to_string(random() % names);
        ASSERT_EQ(first.find(parent, name, items, root), byWalking(parent, name)) << parent->getName() << ' ' << name;
    }
}

} // namespace
} // namespace clock_test
