#include "analysis/ElectricalNets.h"

#include <algorithm>
#include <map>
#include <utility>

namespace kvr::netlistdb::analysis {

namespace {

/// Follows the nets of one module.
class Follower {
  public:
    Follower(const Hierarchy &hierarchy, std::uint32_t module, bool isTop, std::vector<ModuleClocks> &clocks)
        : m_hierarchy(hierarchy), m_module(hierarchy.modules[module]), m_isTop(isTop), m_clocks(clocks),
          m_own(clocks[module]), m_state(m_module.netCount(), State::New)
    {
    }

    void follow()
    {
        m_own.nets.resize(m_module.netCount());
        for (std::uint32_t net = 0; net < m_module.netCount(); ++net) {
            follow(net);
        }
        m_own.below.shrink_to_fit();
    }

  private:
    enum class State : std::uint8_t { New, OnPath, Done };

    /// One step back: to another net of the module, or to where the net begins.
    struct Step {
        std::uint32_t net; ///< NONE at the end
        ElectricalCode end;
        bool inverted;
    };

    void follow(std::uint32_t start)
    {
        m_path.clear();
        std::uint32_t net = start;
        while (m_state[net] != State::Done) {
            if (m_state[net] == State::OnPath) {
                breakLoop(net);
                net = start;
                continue;
            }
            const Step step = stepFrom(net);
            if (step.net == NONE) {
                finish(net, step.end);
                break;
            }
            m_state[net] = State::OnPath;
            m_path.push_back({net, step.inverted});
            net = step.net;
        }
        for (; !m_path.empty(); m_path.pop_back()) {
            const ElectricalCode code = m_own.nets[net].invertedIf(m_path.back().second);
            net = m_path.back().first;
            finish(net, code);
        }
    }

    void finish(std::uint32_t net, ElectricalCode code)
    {
        m_own.nets[net] = code;
        m_state[net] = State::Done;
    }

    /// A ring of buffers begins at its first net.
    void breakLoop(std::uint32_t net)
    {
        std::uint32_t first = net;
        for (auto on = m_path.rbegin(); on->first != net; ++on) {
            first = std::min(first, on->first);
        }
        for (const auto &[each, inverted] : m_path) {
            m_state[each] = State::New;
        }
        m_path.clear();
        finish(first, {ElectricalCode::Net, first, false});
    }

    Step stepFrom(std::uint32_t net)
    {
        const Step itself{NONE, {ElectricalCode::Net, net, false}, false};
        const Span<NetSource> sources = m_module.sources[net];
        if (!m_isTop) {
            for (const NetSource source : sources) {
                if (source.isPort() && (sources.size() == 1 || m_module.ports[source.port()].isOutput)) {
                    return {NONE, {ElectricalCode::Port, source.port(), false}, false};
                }
            }
        }
        if (sources.size() != 1 || sources[0].isPort()) {
            return itself;
        }
        const CellPin pin = m_module.pinAt(sources[0].position());
        std::uint32_t input = NONE;
        bool inverted = false;
        if (!m_module.isSub(pin.cell)) {
            const CellModel::Pin &output = m_hierarchy.models[m_module.modelOf(pin.cell)].pins[pin.pin];
            input = output.passes;
            inverted = output.inverts;
        } else {
            const std::uint32_t sub = m_module.subOf(pin.cell);
            const std::uint32_t inner = m_module.subs[sub].module;
            const std::uint32_t innerNet = m_hierarchy.modules[inner].ports[pin.pin].net;
            if (innerNet == NONE) {
                return itself;
            }
            const ElectricalCode code = m_clocks[inner].nets[innerNet];
            inverted = code.isInverted();
            if (code.kind() != ElectricalCode::Port) {
                return {NONE, {ElectricalCode::Below, placeBelow(sub, pin.pin), inverted}, false};
            }
            input = code.number();
        }
        const std::uint32_t before = input != NONE ? m_module.netsOf(pin.cell)[input] : NONE;
        return before != NONE && before != net ? Step{before, {}, inverted} : itself;
    }

    std::uint32_t placeBelow(std::uint32_t sub, std::uint32_t port)
    {
        const auto [found, isNew] = m_below.try_emplace({sub, port}, static_cast<std::uint32_t>(m_own.below.size()));
        if (isNew) {
            m_own.below.push_back({sub, port});
        }
        return found->second;
    }

    const Hierarchy &m_hierarchy;
    const ModuleGraph &m_module;
    const bool m_isTop;
    const std::vector<ModuleClocks> &m_clocks;
    ModuleClocks &m_own;
    std::vector<State> m_state;
    std::vector<std::pair<std::uint32_t, bool>> m_path;
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t> m_below;
};

} // namespace

void followNets(const Hierarchy &hierarchy, std::uint32_t module, bool isTop, std::vector<ModuleClocks> &clocks)
{
    Follower(hierarchy, module, isTop, clocks).follow();
}

} // namespace kvr::netlistdb::analysis
