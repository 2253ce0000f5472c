#pragma once

#include "DerivedNames.h"
#include "ModuleTable.h"
#include "NetNames.h"
#include "Progress.h"
#include "platform/names/OtherNames.h"

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace kvr::netlistdb::yosys {

/// Makes the nets and net buses of modules and connects their ports. One reader serves all modules, one after the
/// other, so that its tables are allocated once.
class NetReader {
  public:
    NetReader(JsonText &text, ReadFault &fault, AttributeReader &attributes, Progress &progress)
        : m_text(text), m_fault(fault), m_attributes(attributes), m_progress(progress)
    {
    }

    /// Tells which names are derived ones.
    DerivedNames &derivedNames() { return m_derived; }

    /// Makes the nets of @p module and connects its ports.
    void read(Module &module);
    /// Completes the module once all of its cells are connected: notes the names that became no nets.
    void finish();

    /// The net of @p bit; made when it has no name.
    Verific::Net *netOf(Bit bit)
    {
        if (isConstant(bit)) {
            return constantNet(bit - FIRST_CONSTANT);
        }
        BitTable::Entry &entry = m_names.entry(bit);
        return entry.net != nullptr ? entry.net : namelessNet(bit, entry);
    }
    /// The nets of the constants; null for those that nothing is connected to.
    const std::array<Verific::Net *, CONSTANTS> &constantNets() const { return m_constantNets; }

  private:
    void addPortNames();
    void readNetNames(const Section &netNames);
    void readNetName(std::string_view raw, json::value &value);
    NetNames::Rank rankOf(std::string_view name, bool hidden, bool hasPosition) const;
    void makeNets();
    void makeVector(std::uint32_t number);
    void dress(const NetNames::Name &name, Verific::DesignObj &object);
    void connectPorts();
    void noteName(std::uint32_t number);

    Verific::Net *namelessNet(Bit bit, BitTable::Entry &entry);
    Verific::Net *constantNet(unsigned constant);

    JsonText &m_text;
    ReadFault &m_fault;
    AttributeReader &m_attributes;
    Progress &m_progress;
    DerivedNames m_derived;
    CText m_scratch;
    TextBuffer m_nameBuffer;

    // Of the module that is being read.
    Module *m_module = nullptr;
    Verific::Netlist *m_netlist = nullptr;
    NetNames m_names;
    TextBuffer m_texts;                                              ///< names and attributes
    std::vector<std::string_view> m_netAttributes;                   ///< as they are written
    std::unordered_map<std::string_view, std::uint32_t> m_portNames; ///< name of a port -> number of the name
    std::unordered_set<std::string> m_reserved;                      ///< names that look like ours
    std::array<Verific::Net *, CONSTANTS> m_constantNets{};
    names::OtherNamesText m_otherNames;
};

} // namespace kvr::netlistdb::yosys
