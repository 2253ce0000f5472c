#include <netlistdb/analysis/NetFingerprints.h>

#include "analysis/plan/DeepHashes.h"
#include "analysis/plan/LaunchEdges.h"
#include "analysis/plan/NearHashes.h"
#include "analysis/probe/Locator.h"

#include <netlistdb/DesignDatabase.h>

#include <algorithm>
#include <optional>
#include <stdexcept>

namespace kvr::netlistdb::analysis {

using namespace plan;
using namespace probe;

namespace {

/// Finds wires by a hash.
class Index {
  public:
    explicit Index(const std::vector<std::uint64_t> &hashes)
    {
        for (Signal signal = FIRST_SIGNAL; signal < hashes.size(); ++signal) {
            if (hashes[signal] != 0) {
                m_entries.emplace_back(hashes[signal], signal);
            }
        }
        std::sort(m_entries.begin(), m_entries.end());
    }
    using Entry = std::pair<std::uint64_t, Signal>;
    Span<Entry> find(std::uint64_t hash) const
    {
        const auto first = std::lower_bound(m_entries.begin(), m_entries.end(), Entry(hash, 0));
        const auto end = std::upper_bound(first, m_entries.end(), Entry(hash, NONE));
        return {m_entries.data() + (first - m_entries.begin()), m_entries.data() + (end - m_entries.begin())};
    }

  private:
    std::vector<Entry> m_entries;
};

DesignDatabase &checked(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source)
{
    if (!database.isSourceLoaded(source)) {
        throw std::invalid_argument("NetFingerprints: the source is not loaded");
    }
    if (database.workingCopy(source) == nullptr) {
        throw std::invalid_argument("NetFingerprints: the database keeps no source netlists");
    }
    return database;
}

} // namespace

struct NetFingerprints::State {
    State(DesignDatabase &from, IDesignDatabase::SOURCE_TYPE type)
        : database(checked(from, type)), source(type), generation(from.generation(type)), graph(from, type),
          edges(launchEdges(graph)), near(NearHashes(graph).take()), deep(deepHashes(graph)), nearIndex(near),
          deepIndex(deep)
    {
        graph.pins = {};
        graph.nodes = {};
        locator.emplace(graph, database.getRoot(source));
    }

    Signal find(const IVDBInstance *inst, const IVDBNet *net) const
    {
        check();
        try {
            return locator->find(inst, net);
        } catch (const std::invalid_argument &) {
            throw std::invalid_argument("NetFingerprints: the net is none of that instance of the source");
        }
    }

    void check() const
    {
        if (database.generation(source) != generation) {
            throw std::logic_error("NetFingerprints: the source has been reset or imported anew");
        }
    }

    std::vector<Wire> wires(const Index &index, std::uint64_t hash) const
    {
        check();
        std::vector<Wire> found;
        if (hash == 0) {
            return found;
        }
        for (const auto &[key, signal] : index.find(hash)) {
            Wire wire;
            for (const std::uint32_t net : locator->netsOn(signal)) {
                const NetPlace place = locator->placeOf(net);
                const SeenNet seen = {locator->instanceItem(place.occurrence), locator->netItem(place)};
                if (seen.instance != nullptr && seen.net != nullptr) {
                    wire.push_back(seen);
                }
            }
            if (!wire.empty()) {
                found.push_back(std::move(wire));
            }
        }
        return found;
    }

    DesignDatabase &database;
    IDesignDatabase::SOURCE_TYPE source;
    std::uint64_t generation;
    BitGraph graph;
    std::vector<std::uint8_t> edges;
    std::vector<std::uint64_t> near;
    std::vector<std::uint64_t> deep;
    Index nearIndex;
    Index deepIndex;
    std::optional<Locator> locator;
};

NetFingerprints::NetFingerprints(DesignDatabase &database, IDesignDatabase::SOURCE_TYPE source)
    : m_state(std::make_unique<const State>(database, source))
{
}
NetFingerprints::~NetFingerprints() = default;

NetFingerprint NetFingerprints::of(const IVDBInstance *inst, const IVDBNet *net) const
{
    const Signal signal = m_state->find(inst, net);
    if (signal < FIRST_SIGNAL) {
        return {};
    }
    const std::uint64_t deep = m_state->deep[signal];
    return {m_state->near[signal], deep, deep != 0 && m_state->deepIndex.find(deep).size() == 1};
}

std::uint8_t NetFingerprints::edgesOf(const IVDBInstance *inst, const IVDBNet *net) const
{
    return m_state->edges[m_state->find(inst, net)];
}

std::vector<NetFingerprints::Wire> NetFingerprints::findNear(const NetFingerprint &wanted) const
{
    return m_state->wires(m_state->nearIndex, wanted.near);
}

std::vector<NetFingerprints::Wire> NetFingerprints::findDeep(const NetFingerprint &wanted) const
{
    return m_state->wires(m_state->deepIndex, wanted.deep);
}

} // namespace kvr::netlistdb::analysis
