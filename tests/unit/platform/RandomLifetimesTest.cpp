#include "Designs.h"
#include "SavedFileBytes.h"
#include "TrackedNetlists.h"
#include "tests/support/LibsetGuard.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <DataBase.h>
#include <gtest/gtest.h>

namespace {

using namespace Verific;
using namespace platformtest;

using Numbers = std::set<int>;

/// Random hierarchies, cycles included, whose netlists, cells and libraries are deleted at random. A plain model says
/// from the whole graph which netlists must be alive after each step.
class RandomLifetimes {
  public:
    RandomLifetimes(unsigned seed, std::string file) : m_random(seed), m_file(std::move(file))
    {
        Netlist *top = makeNetlist("library0", "restored_top");
        Netlist *middle = makeNetlist("library1", "cell0");
        addInstance(top, "m", middle);
        addInstance(top, "l", makeNetlist("library2", "restored_leaf"));
        addInstance(middle, "l", top->GetInst("l")->View());
        EXPECT_EQ(top->SaveToFile(m_file.c_str()), 1u);
        Libset::Reset();
    }

    void step()
    {
        switch (below(24)) {
        case 0:
        case 1:
        case 2:
        case 3:
            return makeInSet();
        case 4:
            return add(m_tracked.watch(new Netlist("loose"), m_next), ModelNetlist{});
        case 5:
        case 6:
            return copy();
        case 7:
            return restore();
        case 8:
        case 9:
        case 10:
            return deleteInstance();
        case 11:
        case 12:
        case 13:
            return deleteNetlist();
        case 14:
            return deleteCell();
        case 15:
            return below(3) == 0 ? deleteLibrary() : deleteCell();
        case 16:
            return below(6) == 0 ? reset() : deleteNetlist();
        default:
            return addInstanceSomewhere();
        }
    }

    void check() const
    {
        Numbers expected;
        for (const auto &[number, node] : m_nodes) {
            expected.insert(number);
        }
        ASSERT_EQ(m_tracked.alive(), expected);
        for (const auto &[number, node] : m_nodes) {
            ASSERT_EQ(viewsOf(node), node.views) << "netlist " << number;
            const Library *library = Libset::Global()->GetLibrary(node.library.c_str());
            const Cell *cell = library != nullptr ? library->GetCell(node.cell.c_str()) : nullptr;
            if (node.cell.empty()) {
                ASSERT_EQ(node.netlist->Owner(), nullptr);
                continue;
            }
            ASSERT_EQ(node.netlist->CellBaseName(), node.cell);
            ASSERT_EQ(node.netlist->Owner()->Owner()->Name(), node.library);
            ASSERT_EQ(node.netlist->Owner() == cell, node.inSet);
        }
    }

    /// Deletes everything that the set does not own, in random order.
    void finish()
    {
        reset();
        while (!m_nodes.empty()) {
            deleteNetlist();
            ASSERT_NO_FATAL_FAILURE(check());
        }
    }

  private:
    struct ModelNetlist {
        Netlist *netlist = nullptr;
        std::string library; ///< empty for a loose netlist, as the cell
        std::string cell;
        bool inSet = false;
        bool restored = false;
        bool whileUsed = false;
        std::vector<int> views; ///< of the instances in order; 0: none
    };

    unsigned below(std::size_t bound) { return static_cast<unsigned>(m_random() % bound); }

    int anyNode() { return std::next(m_nodes.begin(), below(m_nodes.size()))->first; }

    std::vector<int> viewsOf(const ModelNetlist &node) const
    {
        std::vector<int> views;
        MapIter iter;
        const Instance *inst = nullptr;
        FOREACH_INSTANCE_OF_NETLIST (node.netlist, iter, inst) {
            const auto found = std::find_if(m_nodes.begin(), m_nodes.end(),
                                            [&](const auto &each) { return each.second.netlist == inst->View(); });
            views.push_back(inst->View() == nullptr ? 0 : found != m_nodes.end() ? found->first : -1);
        }
        return views;
    }

    void add(Netlist *netlist, ModelNetlist node)
    {
        node.netlist = netlist;
        if (netlist->Owner() != nullptr) {
            node.cell = netlist->CellBaseName();
            node.library = netlist->Owner()->Owner()->Name();
            node.inSet = true;
        }
        m_nodes[m_next++] = std::move(node);
    }

    void makeInSet()
    {
        const std::string library = "library" + std::to_string(below(3));
        const std::string cell = "cell" + std::to_string(below(3));
        add(m_tracked.watch(makeNetlist(library.c_str(), cell.c_str()), m_next), ModelNetlist{});
    }

    void copy()
    {
        if (m_nodes.empty()) {
            return;
        }
        const ModelNetlist &original = m_nodes[anyNode()];
        ModelNetlist node;
        node.views = original.views;
        add(m_tracked.watch(original.netlist->Copy(nullptr), m_next), node);
    }

    void restore()
    {
        Netlist *top = Netlist::RestoreFromFile(m_file.c_str());
        Netlist *middle = top->GetInst("m")->View();
        Netlist *leaf = top->GetInst("l")->View();
        ModelNetlist below;
        below.restored = true;
        add(m_tracked.watch(leaf, m_next), below);
        below.views = {m_next - 1};
        add(m_tracked.watch(middle, m_next), below);
        ModelNetlist above;
        above.views = {m_next - 1, m_next - 2};
        add(m_tracked.watch(top, m_next), above);
    }

    void addInstanceSomewhere()
    {
        if (m_nodes.empty()) {
            return;
        }
        ModelNetlist &user = m_nodes[anyNode()];
        const int view = anyNode();
        addInstance(user.netlist, "i", m_nodes[view].netlist);
        user.views.push_back(view);
    }

    void deleteInstance()
    {
        if (m_nodes.empty()) {
            return;
        }
        ModelNetlist &user = m_nodes[anyNode()];
        if (user.views.empty()) {
            return;
        }
        const unsigned place = below(user.views.size());
        MapIter iter;
        const Instance *inst = nullptr;
        unsigned at = 0;
        FOREACH_INSTANCE_OF_NETLIST (user.netlist, iter, inst) {
            if (at++ == place) {
                break;
            }
        }
        user.views.erase(user.views.begin() + place);
        delete inst;
        collect();
    }

    void deleteNetlist()
    {
        if (m_nodes.empty()) {
            return;
        }
        const int number = anyNode();
        delete m_nodes[number].netlist;
        remove({number});
        collect();
    }

    void deleteCell()
    {
        if (m_nodes.empty()) {
            return;
        }
        const ModelNetlist chosen = m_nodes[anyNode()];
        if (chosen.inSet) {
            delete chosen.netlist->Owner();
            doom([&](const ModelNetlist &node) { return node.library == chosen.library && node.cell == chosen.cell; });
        }
    }

    void deleteLibrary()
    {
        const std::string name = "library" + std::to_string(below(3));
        delete Libset::Global()->GetLibrary(name.c_str());
        doom([&](const ModelNetlist &node) { return node.library == name; });
    }

    void reset()
    {
        Libset::Reset();
        doom([](const ModelNetlist &) { return true; });
    }

    Numbers reachableFrom(const Numbers &roots) const
    {
        Numbers reached = roots;
        std::vector<int> waiting(roots.begin(), roots.end());
        while (!waiting.empty()) {
            const ModelNetlist &node = m_nodes.at(waiting.back());
            waiting.pop_back();
            for (const int view : node.views) {
                if (view != 0 && reached.insert(view).second) {
                    waiting.push_back(view);
                }
            }
        }
        return reached;
    }

    template <typename Matches> void doom(Matches matches)
    {
        Numbers loose;
        for (const auto &[number, node] : m_nodes) {
            if (node.cell.empty()) {
                loose.insert(number);
            }
        }
        const Numbers reached = reachableFrom(loose);
        Numbers gone;
        for (auto &[number, node] : m_nodes) {
            if (node.inSet && matches(node)) {
                if (reached.count(number) != 0) {
                    node.inSet = false;
                    node.whileUsed = true;
                } else {
                    gone.insert(number);
                }
            }
        }
        remove(gone);
        collect();
    }

    void remove(const Numbers &gone)
    {
        for (const int number : gone) {
            const ModelNetlist &node = m_nodes[number];
            if (node.cell.empty() || node.whileUsed) {
                for (const int view : node.views) {
                    ModelNetlist &used = m_nodes[view];
                    used.whileUsed = used.whileUsed || used.restored;
                }
            }
        }
        m_nodes.erase(0);
        for (const int number : gone) {
            m_nodes.erase(number);
        }
        for (auto &[number, node] : m_nodes) {
            for (int &view : node.views) {
                view = gone.count(view) != 0 ? 0 : view;
            }
        }
    }

    void collect()
    {
        for (;;) {
            Numbers held;
            for (const auto &[number, node] : m_nodes) {
                if (!node.whileUsed) {
                    held.insert(number);
                }
            }
            const Numbers reached = reachableFrom(held);
            Numbers gone;
            for (const auto &[number, node] : m_nodes) {
                if (reached.count(number) == 0) {
                    gone.insert(number);
                }
            }
            if (gone.empty()) {
                return;
            }
            remove(gone);
        }
    }

    std::mt19937 m_random;
    std::string m_file;
    TrackedNetlists m_tracked;
    std::map<int, ModelNetlist> m_nodes;
    int m_next = 1;
};

class RandomLifetimesTest : public testing::TestWithParam<unsigned> {
  protected:
    testsupport::LibsetGuard m_guard;
    ScratchDirectory m_scratch;
};

TEST_P(RandomLifetimesTest, AreThoseOfAModelThatSearchesTheWholeGraph)
{
    RandomLifetimes lifetimes(GetParam(), m_scratch.file("restored.nl"));
    for (int step = 0; step < 400; ++step) {
        ASSERT_NO_FATAL_FAILURE(lifetimes.step());
        ASSERT_NO_FATAL_FAILURE(lifetimes.check()) << "seed " << GetParam() << " step " << step;
    }
    ASSERT_NO_FATAL_FAILURE(lifetimes.finish());
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomLifetimesTest, testing::Range(1u, 25u));

} // namespace
