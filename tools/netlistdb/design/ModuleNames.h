#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Verific {
class DesignObj;
class Netlist;
} // namespace Verific

namespace kvr::netlistdb {
class IVDBItem;
class IVDBNet;
class IVDBNetBus;
class IVDBNetlist;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

/// One bit of something that has a name: a net, a constant, or nothing where a vector has a gap.
struct NamedBit {
    IVDBNet *net = nullptr;
    char constant = '\0'; ///< one of 01xz where there is no net
};

/// A name other than those of the nets and buses themselves.
struct OtherSignal {
    enum class Kind : std::uint8_t { Declared, Derived, Hidden, Path, Split };

    std::string name;
    /// Path: hierarchical name of a flattened net, its segments joined with '/'. Split: a vector without a name of its
    /// own, of nets that are called like its bits.
    Kind kind = Kind::Hidden;
    bool isVector = false;
    int left = 0;
    int right = 0;
    bool declared = false;      ///< by the user
    std::string src;            ///< as the netlist has it; empty when there is none
    std::size_t segments = 0;   ///< of the hierarchical name; 0 when not known
    std::vector<NamedBit> bits; ///< from the right end of the vector on

    /// Place of @p index in bits, when it has one.
    std::optional<std::size_t> positionOf(int index) const;
    int indexAt(std::size_t position) const;
    /// `name`, or `name[index]` in a vector.
    std::string bitName(std::size_t position) const;
};

/// What the nets and buses of one module are called: their own names, and all others that the netlist keeps.
class ModuleNames {
  public:
    /// @p source is the netlist of @p module; null when it is not known. Both must outlive the object.
    ModuleNames(IVDBNetlist &module, const Verific::Netlist *source);

    using Nets = std::unordered_map<std::string_view, IVDBNet *>;
    using Buses = std::unordered_map<std::string_view, IVDBNetBus *>;
    const Nets &nets() const { return m_nets; }
    const Buses &buses() const { return m_buses; }
    const std::deque<OtherSignal> &others();

    /// What @p name names: a net, all bits of a vector from left to right, or with `[index]` and `[from:to]` some of
    /// them; a backslash in front of the name may be missing or too many. Empty when there is nothing.
    struct Found {
        NamedBit bit;
        std::string name; ///< of the bit, by the name that was asked for
    };
    std::vector<Found> find(std::string_view name);

    /// The other names of @p item, a net or bus of the module: declared ones first. A vector of which only some bits
    /// are in @p item is listed with a range.
    std::vector<std::string> aliasesOf(const IVDBItem &item);
    /// The same for what is no item of its own.
    std::vector<std::string> aliasesOf(const OtherSignal &signal);

    /// The vector of which @p net is a bit, by its own name, although it is no bus because other bits have other names;
    /// null for all other nets.
    const OtherSignal *brokenVectorOf(const IVDBNet &net);

    /// True when the user declared @p item, whether it is known where or not.
    bool isDeclared(const IVDBItem &item);
    /// Where @p item comes from, as the netlist has it: every range of it.
    std::vector<std::string> sourcesOf(const IVDBItem &item) const;
    /// What the netlist database keeps of @p item; null when it is not known.
    const Verific::DesignObj *sourceOf(const IVDBItem &item) const;

  private:
    struct Place {
        std::uint32_t other;
        std::uint32_t position;
    };

    void readOtherNames();
    void addPaths();
    void addPath(const std::string &hdlName, OtherSignal signal);
    void addSplitVectors();
    void indexPlaces();
    std::vector<Found> findExactly(std::string_view name);
    std::vector<std::string> aliasesOf(const std::vector<const IVDBNet *> &nets, const std::string &name,
                                       bool isVector);
    std::optional<OtherSignal> signalCalled(std::string_view name);

    IVDBNetlist &m_module;
    const Verific::Netlist *m_source;
    Nets m_nets;
    Buses m_buses;
    // Made on demand: most names are those of nets and buses.
    bool m_othersRead = false;
    std::deque<OtherSignal> m_others;
    std::unordered_map<std::string_view, std::uint32_t> m_otherByName;
    std::unordered_map<const IVDBNet *, std::vector<Place>> m_places;
    std::optional<std::unordered_set<std::string>> m_unplaced; ///< declared nets and buses without position
};

} // namespace kvr::netlistdb::tool
