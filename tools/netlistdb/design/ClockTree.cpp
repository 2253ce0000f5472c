#include "design/ClockTree.h"

#include "design/TreeDrawing.h"

namespace kvr::netlistdb::tool {

namespace {

using analysis::ClockId;

class Drawer {
  public:
    explicit Drawer(const analysis::ClockMap &clocks)
        : m_children(clocks.clocks().size()), m_isDrawn(clocks.clocks().size())
    {
        for (ClockId clock = 0; clock < m_children.size(); ++clock) {
            const std::vector<ClockId> &parents = clocks.clocks()[clock].parents;
            if (!parents.empty()) {
                m_children[parents.front()].push_back(clock);
            }
        }
        for (ClockId clock = 0; clock < m_children.size(); ++clock) {
            if (clocks.clocks()[clock].parents.empty()) {
                draw(clock);
            }
        }
        for (ClockId clock = 0; clock < m_children.size(); ++clock) {
            draw(clock);
        }
    }

    std::vector<ClockTreeLine> lines;

  private:
    struct Waiting {
        ClockId clock;
        std::vector<bool> isLast; ///< on each level, whether no sibling follows
    };

    /// Draws @p root and what is made from it, unless it is drawn already.
    void draw(ClockId root)
    {
        std::vector<Waiting> waiting = {{root, {}}};
        while (!waiting.empty()) {
            const Waiting at = std::move(waiting.back());
            waiting.pop_back();
            if (m_isDrawn[at.clock]) {
                continue;
            }
            m_isDrawn[at.clock] = true;
            lines.push_back({at.clock, treeDrawing(at.isLast)});
            const std::vector<ClockId> &children = m_children[at.clock];
            for (auto child = children.rbegin(); child != children.rend(); ++child) {
                waiting.push_back({*child, at.isLast});
                waiting.back().isLast.push_back(child == children.rbegin());
            }
        }
    }

    std::vector<std::vector<ClockId>> m_children;
    std::vector<bool> m_isDrawn;
};

} // namespace

std::vector<ClockTreeLine> clockTreeOf(const analysis::ClockMap &clocks)
{
    return std::move(Drawer(clocks).lines);
}

} // namespace kvr::netlistdb::tool
