#include "Bindings.h"
#include "ProbeRecords.h"
#include "Text.h"
#include "Turn.h"
#include "design/ProbeList.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <iterator>
#include <netlistdb/netlistdb.h>
#include <unordered_map>
#include <utility>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

/// How long it goes on without looking at signals.
constexpr auto STEP_TIME = std::chrono::milliseconds(20);
constexpr std::size_t MOST_FOUND_AHEAD = 256;

/// Goes through what may be probed in an instance and below it, level by level.
class ProbeWalk : public Walker {
  public:
    ProbeWalk(const InstanceHandle &start, bool all) : m_origin(start.origin), m_all(all), m_waiting{start.instance}
    {
        m_origin.loaded->add(*this);
    }
    ~ProbeWalk() override { m_origin.loaded->remove(*this); }
    ProbeWalk(const ProbeWalk &) = delete;
    ProbeWalk &operator=(const ProbeWalk &) = delete;

    py::object next()
    {
        m_origin.check();
        while (m_found.empty() && !m_isOver) {
            findSome();
            if (PyErr_CheckSignals() != 0) {
                throw py::error_already_set();
            }
            m_origin.check();
        }
        if (m_found.empty()) {
            throw py::stop_iteration();
        }
        const Found found = std::move(m_found.front());
        m_found.pop_front();
        return probeRecord(m_origin, itemOf(found), found.report);
    }

    void letGo() override
    {
        m_isOver = true;
        m_waiting.clear();
        m_probes.clear();
        m_found.clear();
    }

  private:
    struct Found {
        IVDBInstance *instance;
        const tool::Probe *probe;
        const tool::OtherSignal *signal; ///< where the probe has no item
        analysis::SignalReport report;
    };

    /// Finds in a turn, and hands over with the interpreter lock.
    void findSome()
    {
        std::vector<Found> found;
        bool isOver = false;
        {
            const Turn turn;
            const py::gil_scoped_release release;
            isOver = findInTurn(found);
        }
        if (!m_origin.loaded->isClosed()) {
            std::move(found.begin(), found.end(), std::back_inserter(m_found));
            m_isOver = m_isOver || isOver;
        }
    }

    /// Returns whether that was the end.
    bool findInTurn(std::vector<Found> &found)
    {
        const auto end = std::chrono::steady_clock::now() + STEP_TIME;
        while (!m_waiting.empty() && found.size() < MOST_FOUND_AHEAD && std::chrono::steady_clock::now() < end) {
            IVDBInstance &instance = *m_waiting.front();
            const std::vector<tool::Probe> &probes = probesOf(*instance.getModule());
            if (m_next == probes.size()) {
                const std::vector<IVDBInstance *> &children = instance.getSubInstances();
                m_waiting.insert(m_waiting.end(), children.begin(), children.end());
                m_waiting.pop_front();
                m_next = 0;
                continue;
            }
            const tool::Probe &probe = probes[m_next++];
            found.push_back({&instance, &probe, signalOf(instance, probe),
                             m_origin.loaded->report().of(&instance, probe.bits, probe.item)});
        }
        return m_waiting.empty();
    }

    const std::vector<tool::Probe> &probesOf(IVDBNetlist &module)
    {
        const auto [probes, isNew] = m_probes.try_emplace(&module);
        tool::Design &design = m_origin.design();
        if (isNew && !design.isBlackBox(module)) {
            probes->second = tool::probesOf(design, module);
            const auto end = std::remove_if(probes->second.begin(), probes->second.end(),
                                            [this](const tool::Probe &probe) { return !m_all && !probe.declared; });
            probes->second.erase(end, probes->second.end());
        }
        return probes->second;
    }

    const tool::OtherSignal *signalOf(IVDBInstance &instance, const tool::Probe &probe)
    {
        if (probe.item != nullptr) {
            return nullptr;
        }
        const auto &others = m_origin.design().names(*instance.getModule()).others();
        const auto other = std::find_if(others.begin(), others.end(), [&](const tool::OtherSignal &each) {
            return each.name == probe.name && each.isVector == probe.isBus;
        });
        return other != others.end() ? &*other : nullptr;
    }

    py::object itemOf(const Found &found) const
    {
        if (found.probe->item == nullptr) {
            if (found.signal == nullptr) {
                return py::none();
            }
            IVDBNet *const net = found.probe->bits.empty() ? nullptr : found.probe->bits.front();
            if (found.signal->isVector) {
                return py::cast(BusHandle{m_origin, found.instance, nullptr, found.signal});
            }
            return py::cast(net != nullptr ? NetHandle{m_origin, found.instance, net}
                                           : NetHandle{m_origin, found.instance, nullptr, found.signal});
        }
        auto *item = const_cast<IVDBNetBase *>(found.probe->item);
        return item->getItemType() == ITEM_NET_BUS
                   ? py::cast(BusHandle{m_origin, found.instance, static_cast<IVDBNetBus *>(item)})
                   : py::cast(NetHandle{m_origin, found.instance, static_cast<IVDBNet *>(item)});
    }

    Origin m_origin;
    const bool m_all; ///< also what no user declared
    // With the interpreter lock:
    std::deque<Found> m_found;
    bool m_isOver = false;
    // In a turn:
    std::deque<IVDBInstance *> m_waiting;
    std::size_t m_next = 0; ///< of the probes of the first that waits
    std::unordered_map<const IVDBNetlist *, std::vector<tool::Probe>> m_probes;
};

} // namespace

void bindProbeWalks(py::module_ &module)
{
    auto type = makeClass<ProbeWalk>(module, "ProbeWalk", "Goes through what may be probed, one by one.");
    type.def("__iter__", [](const py::object &self) { return self; });
    type.def("__next__", [](ProbeWalk &self) { return self.next(); });
    module.def(
        "probes",
        [](const InstanceHandle &start, bool all, const py::object &progress) {
            if (start.origin.isDevice) {
                throw py::value_error("what may be probed is asked of the elaborated form");
            }
            needReport(start.origin, progress);
            return std::make_unique<ProbeWalk>(start, all);
        },
        py::arg("start"), py::arg("all"), py::arg("progress"),
        "Goes through the nets and buses of an instance and below it.");
}

} // namespace kvr::netlistdb::python
