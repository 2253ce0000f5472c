#pragma once

#include "analysis/Lists.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// What a set of clocks is made of, in the terms of one module: a kind and a number in 32 bits.
class Atom {
  public:
    enum Kind : std::uint32_t {
        // What reaches a net.
        Launched,       ///< registers of a clock; the number is the clock's in the module
        Network,        ///< the clock itself
        LaunchedByPort, ///< registers whose clock comes in through that port
        InputPort,      ///< whatever reaches that port from outside
        // What a net reaches.
        Captured, ///< registers of a clock; this and the two that follow: by use of the pin
        CapturedEnable,
        CapturedSetReset,
        CapturedByPort, ///< registers whose clock comes in through that port; likewise
        CapturedByPortEnable,
        CapturedByPortSetReset,
        OutputPort, ///< whatever that port reaches outside
    };
    static constexpr std::uint32_t MOST = 1U << 28; ///< numbers are below

    Atom() = default;
    Atom(Kind kind, std::uint32_t number) : m_code(kind << 28 | number) {}
    Kind kind() const { return static_cast<Kind>(m_code >> 28); }
    std::uint32_t number() const { return m_code & (MOST - 1); }
    std::uint32_t code() const { return m_code; }
    friend bool operator<(Atom a, Atom b) { return a.m_code < b.m_code; }
    friend bool operator==(Atom a, Atom b) { return a.m_code == b.m_code; }

  private:
    std::uint32_t m_code = 0;
};

/// Sets of atoms with distances and flags, each held once.
///
/// The distances in the table count from the nearest atom of the set: two sets that differ by the way to all of their
/// atoms are one, seen from different distances. Most nets of a design have one of few sets.
class SetTable {
  public:
    struct Entry {
        Atom atom;
        std::uint32_t distance;
        friend bool operator==(const Entry &a, const Entry &b) { return a.atom == b.atom && a.distance == b.distance; }
    };
    using Entries = std::vector<Entry>;
    /// A set as seen from @p distance; 0 for one without atoms.
    struct Ref {
        std::uint32_t set = 0; ///< 0: the empty set
        std::uint32_t distance = 0;
        friend bool operator==(const Ref &a, const Ref &b) { return a.set == b.set && a.distance == b.distance; }
    };

    SetTable();

    /// The set with these entries and flags. @p entries is sorted by atom, each once.
    Ref intern(const Entries &entries, std::uint32_t flags);
    Ref intern(Atom atom) { return intern(Entries{{atom, 0}}, 0); }
    Ref internFlags(std::uint32_t flags) { return intern({}, flags); }
    /// All atoms and flags of both, each atom from the nearer of its two distances.
    Ref merge(Ref a, Ref b);
    /// The same set seen from @p cells further away.
    Ref behind(Ref ref, std::uint32_t cells) const
    {
        return {ref.set, (*this)[ref.set].empty() ? 0 : ref.distance + cells};
    }

    /// Entries of a set, sorted by atom.
    Span<Entry> operator[](std::uint32_t set) const
    {
        const Set &found = m_sets[set];
        return {m_entries.data() + found.first, m_entries.data() + found.first + found.count};
    }
    std::uint32_t flags(std::uint32_t set) const { return m_sets[set].flags; }
    std::uint32_t size() const { return static_cast<std::uint32_t>(m_sets.size()); }

    /// Forgets what only adding and merging need.
    void finish();
    std::size_t memory() const
    {
        return m_sets.capacity() * sizeof(Set) + m_entries.capacity() * sizeof(Entry) +
               m_places.capacity() * sizeof(std::uint32_t) + m_merged.capacity() * sizeof(Merged);
    }

  private:
    struct Set {
        std::size_t first;
        std::uint32_t count;
        std::uint32_t flags;
    };
    /// Remembered result of a merge of two sets, the second being further away by some cells.
    struct Merged {
        std::uint32_t a = NONE;
        std::uint32_t b = NONE;
        std::uint32_t further = 0;
        Ref result;
    };

    std::uint32_t find(const Entries &entries, std::uint32_t flags);
    void growPlaces();
    Ref mergeAnew(std::uint32_t a, std::uint32_t b, std::uint32_t further);

    std::vector<Set> m_sets;
    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_places; ///< open addressing, a power of two
    std::vector<std::uint32_t> m_hashes; ///< by set
    std::vector<Merged> m_merged;        ///< by hash; a later result takes the place of an earlier one
    Entries m_scratch;
};

/// Merges @p from, seen from @p cells further away, into @p to; returns whether @p to changed. Both are sorted by atom.
template <typename From>
bool mergeEntries(SetTable::Entries &to, const From &from, std::uint32_t cells, SetTable::Entries &scratch)
{
    scratch.clear();
    bool changed = false;
    auto left = to.begin();
    for (const SetTable::Entry &entry : from) {
        const std::uint32_t distance = entry.distance + cells;
        while (left != to.end() && left->atom < entry.atom) {
            scratch.push_back(*left++);
        }
        if (left != to.end() && left->atom == entry.atom) {
            changed = changed || distance < left->distance;
            scratch.push_back({entry.atom, distance < left->distance ? distance : left->distance});
            ++left;
        } else {
            changed = true;
            scratch.push_back({entry.atom, distance});
        }
    }
    if (changed) {
        scratch.insert(scratch.end(), left, to.end());
        to.swap(scratch);
    }
    return changed;
}

} // namespace kvr::netlistdb::analysis
