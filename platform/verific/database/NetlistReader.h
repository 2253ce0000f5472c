#pragma once

#include "SavedFormat.h"
#include "SharedName.h"
#include "saved_netlist.capnp.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Verific {

class AttTable;
class Cell;
class DesignObj;
class Instance;
class Library;
class Map;
class Net;
class Netlist;
class ParamTable;
class Port;

/// Builds the netlists of a saved file and brings them into the global libset.
///
/// Trusts nothing in the message: every number is checked before it is used, and at most a fixed
/// multiple of its size is allocated. Until the end everything belongs to the reader, which deletes it when something
/// is wrong.
class NetlistReader {
  public:
    /// Thrown by read() when the message is inconsistent.
    struct Damaged {};

    /// @p size is that of the message in bytes.
    NetlistReader(saved::SavedNetlist::Reader message, std::uint64_t size);
    ~NetlistReader();
    NetlistReader(const NetlistReader &) = delete;
    NetlistReader &operator=(const NetlistReader &) = delete;

    /// The top netlist, in its cell. Throws Damaged, kj::Exception and std::bad_alloc, the libset then being as before.
    Netlist *read();

  private:
    using Column = capnp::List<std::uint32_t>::Reader;
    using ByteColumn = capnp::List<std::uint8_t>::Reader;

    class TextCursor;
    class ObjectCursor;
    class BusCursor;
    struct AttTableRelease {
        void operator()(AttTable *table) const;
    };
    struct ParamTableRelease {
        void operator()(ParamTable *table) const;
    };

    void readShared();
    void readTexts();
    void readFiles();
    void readAttributeSets();
    void readParameterSets();
    SharedName textAt(std::uint32_t number) const;
    SharedName textOrNone(std::uint32_t number) const;
    /// Counts the length of @p text, which is copied or compared whole although the message holds it but once.
    void spendOn(const SharedName &text);

    void readNetlists();
    Column counts(Column column, std::uint64_t total) const;
    void readPorts();
    void readPortBuses();
    void readNets();
    void readPortNets();
    void readNetBuses();
    void readShapes();
    void readInstances();
    void checkHierarchy(const Column &shapes, const Column &sizes) const;
    void readMixedNets();
    void readMixedReferences();

    void attach();
    /// The library of that name; made if need be, with the traits of the current row of @p traits.
    Library *library(const char *name, const ObjectCursor *traits);
    Cell *cell(Library &library, const char *name, const ObjectCursor *traits);
    SharedName freeViewName(const Cell &cell, const std::string &name);

    saved::SavedNetlist::Reader m_message;
    std::uint64_t m_textBudget; ///< what spendOn() may still spend

    std::vector<SharedName> m_texts;
    std::vector<std::uint64_t> m_files; ///< handles of line 0
    std::vector<std::unique_ptr<AttTable, AttTableRelease>> m_attributeSets;
    std::vector<std::unique_ptr<ParamTable, ParamTableRelease>> m_parameterSets;

    std::vector<std::unique_ptr<Library>> m_madeLibraries; ///< owned, like the next two, until read() has succeeded
    std::vector<std::unique_ptr<Cell>> m_madeCells;
    std::vector<Netlist *> m_netlists;
    std::map<std::pair<const Cell *, std::string>, unsigned> m_viewNumbers; ///< tried last for a free view name
    // Rows of all netlists together, and where those of each netlist start.
    std::vector<Port *> m_ports;
    std::vector<std::uint64_t> m_firstPort;
    std::vector<Net *> m_nets;
    std::vector<std::uint64_t> m_firstNet;
    std::vector<Instance *> m_instances;
    std::vector<std::pair<Instance *, unsigned>> m_newReferences; ///< instances and places of one netlist

    struct Shape {
        Netlist *view;
        std::uint64_t firstPort; ///< in m_shapePorts
        std::uint32_t ports;
    };
    std::vector<Shape> m_shapes;
    std::vector<std::uint32_t> m_shapeViews; ///< row of the netlist plus 1
    std::vector<Port *> m_shapePorts;
};

} // namespace Verific
