#include "Bindings.h"
#include "Text.h"
#include "Turn.h"
#include "design/NamePattern.h"
#include "design/NameSearch.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <memory>
#include <netlistdb/netlistdb.h>
#include <pybind11/stl.h>
#include <utility>
#include <vector>

namespace kvr::netlistdb::python {

namespace py = pybind11;

namespace {

/// How long a search goes on without looking at signals.
constexpr auto SLICE = std::chrono::milliseconds(20);
/// How many hits it finds ahead at most; the first ones come one by one.
constexpr std::size_t MOST_AHEAD = 512;

class Search : public Walker {
  public:
    /// What was found; one without item and signal is an instance.
    struct Hit {
        IVDBInstance *instance;
        IVDBNetBase *item;
        const tool::OtherSignal *signal;
    };

    Search(Origin origin, IVDBInstance &start, std::unique_ptr<const tool::NamePattern> pattern, std::uint32_t kinds,
           std::uint64_t limit)
        : m_origin(std::move(origin)), m_pattern(std::move(pattern)), m_left(limit)
    {
        VDBSearchParam param;
        param.startItem = &start;
        m_search =
            std::make_unique<tool::NameSearch>(m_origin.design(), tool::NameSearch::Wish{*m_pattern, kinds, param});
        m_origin.loaded->add(*this);
    }
    ~Search() override { m_origin.loaded->remove(*this); }
    Search(const Search &) = delete;
    Search &operator=(const Search &) = delete;

    py::object next()
    {
        m_origin.check();
        while (m_hits.empty() && !m_isOver && m_left > 0) {
            findSome();
            if (PyErr_CheckSignals() != 0) {
                throw py::error_already_set();
            }
            m_origin.check();
        }
        if (m_hits.empty() || m_left == 0) {
            throw py::stop_iteration();
        }
        --m_left;
        const Hit hit = m_hits.front();
        m_hits.pop_front();
        return handleOf(hit);
    }

    void close()
    {
        const Turn turn;
        letGo();
    }

    void letGo() override
    {
        m_isClosed = true;
        m_isOver = true;
        m_search.reset();
        m_hits.clear();
    }

  private:
    /// Finds in a turn, and hands over with the interpreter lock.
    void findSome()
    {
        std::vector<Hit> hits;
        bool isOver = false;
        {
            const Turn turn;
            const py::gil_scoped_release release;
            isOver = findInTurn(hits);
        }
        if (!m_isClosed) {
            m_hits.insert(m_hits.end(), hits.begin(), hits.end());
            m_isOver = m_isOver || isOver;
        }
    }

    /// Returns whether that was the end.
    bool findInTurn(std::vector<Hit> &hits)
    {
        const auto end = std::chrono::steady_clock::now() + SLICE;
        for (std::size_t steps = 1; m_search != nullptr && hits.size() < m_ahead; ++steps) {
            const tool::NameSearch::Step step = m_search->step();
            if (step == tool::NameSearch::Step::End) {
                m_search.reset();
            } else if (step == tool::NameSearch::Step::Hit) {
                const bool isInstance = m_search->isInstance();
                hits.push_back({&m_search->instance(), isInstance ? nullptr : m_search->hit().item,
                                isInstance ? nullptr : m_search->hit().signal});
            }
            if (steps % 256 == 0 && std::chrono::steady_clock::now() > end) {
                break;
            }
        }
        m_ahead = std::min(2 * m_ahead, MOST_AHEAD);
        return m_search == nullptr;
    }

    py::object handleOf(const Hit &hit) const
    {
        if (hit.item == nullptr && hit.signal == nullptr) {
            return py::cast(InstanceHandle{m_origin, hit.instance});
        }
        if (hit.item == nullptr) {
            return hit.signal->isVector ? py::cast(BusHandle{m_origin, hit.instance, nullptr, hit.signal})
                                        : py::cast(NetHandle{m_origin, hit.instance, nullptr, hit.signal});
        }
        if (hit.item->getItemType() == ITEM_NET_BUS) {
            return py::cast(BusHandle{m_origin, hit.instance, static_cast<IVDBNetBus *>(hit.item)});
        }
        return py::cast(NetHandle{m_origin, hit.instance, static_cast<IVDBNet *>(hit.item)});
    }

    Origin m_origin;
    std::unique_ptr<const tool::NamePattern> m_pattern;
    // With the interpreter lock:
    std::uint64_t m_left;
    std::deque<Hit> m_hits; ///< found and not handed out
    bool m_isOver = false;
    bool m_isClosed = false;
    // In a turn:
    std::size_t m_ahead = 1;
    std::unique_ptr<tool::NameSearch> m_search; ///< null at its end
};

std::uint32_t maskOf(const std::vector<std::string> &kinds)
{
    std::uint32_t mask = 0;
    for (const std::string &kind : kinds) {
        if (kind == "instance") {
            mask |= ITEM_INSTANCE;
        } else if (kind == "net") {
            mask |= ITEM_NET;
        } else if (kind == "bus") {
            mask |= ITEM_NET_BUS;
        } else {
            throw py::value_error("'" + kind + "' is none of instance, net, bus");
        }
    }
    return mask;
}

tool::NamePattern::Kind syntaxOf(const std::string &name)
{
    using Kind = tool::NamePattern::Kind;
    if (name != "glob" && name != "regex" && name != "plain") {
        throw py::value_error("'" + name + "' is none of glob, regex, plain");
    }
    return name == "glob" ? Kind::Glob : name == "regex" ? Kind::Regex : Kind::Plain;
}

} // namespace

void bindSearch(py::module_ &module)
{
    auto type = makeClass<Search>(module, "Search", "Finds instances, nets and buses, one by one.");
    type.def("__iter__", [](const py::object &self) { return self; });
    type.def("__next__", [](Search &self) { return self.next(); });
    type.def(
        "close", [](Search &self) { self.close(); }, "Ends the search.");
    module.def(
        "search",
        [](const InstanceHandle &start, const py::str &pattern, const std::string &syntax, bool ignoreCase,
           const std::vector<std::string> &kinds, std::optional<std::uint64_t> limit) {
            auto compiled = std::make_unique<const tool::NamePattern>(syntaxOf(syntax), bytesOf(pattern), ignoreCase);
            const std::uint32_t mask = maskOf(kinds);
            const Turn turn;
            return std::make_unique<Search>(start.origin, *start.instance, std::move(compiled), mask,
                                            limit.value_or(UINT64_MAX));
        },
        py::arg("start"), py::arg("pattern"), py::arg("syntax"), py::arg("ignore_case"), py::arg("kinds"),
        py::arg("limit"), "Searches an instance and all below it.");
}

} // namespace kvr::netlistdb::python
