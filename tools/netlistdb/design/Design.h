#pragma once

#include "base/Failure.h"
#include "design/DeviceCensus.h"
#include "design/Form.h"
#include "design/ItemFacts.h"
#include "design/ModuleNames.h"
#include "design/Reading.h"
#include "design/SourceNetlists.h"

#include <memory>
#include <netlistdb/DesignDatabase.h>
#include <netlistdb/analysis/ClockMap.h>
#include <string>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::tool {

/// A netlist that was read, still in the netlist database.
struct SourceNetlist {
    std::string name; ///< of its file, for messages
    Verific::Netlist *netlist = nullptr;
    Form form = Form::Elaborated;
};

/// Whether a command asks about clocks, which costs time and memory.
enum class Clocks { No, Yes };

/// An imported design: one form of it. The last one of a database frees the netlist database with itself.
class Design {
  public:
    /// Keeps @p netlist, from which @p database is to be filled, for what the database does not tell. With Clocks::Yes
    /// the database must keep its source netlists.
    Design(std::string name, Form form, std::shared_ptr<DesignDatabase> database, const Verific::Netlist &netlist,
           Clocks clocks);
    ~Design();
    Design(const Design &) = delete;
    Design &operator=(const Design &) = delete;

    /// Asks the database's working copy for what netlist was asked for so far, which may be deleted afterwards. The
    /// database must keep its source netlists, and have been filled.
    void useWorkingCopy();

    const std::string &name() const { return m_name; }
    Form form() const { return m_form; }
    const DeviceCensus &devices() const { return m_devices; }
    DesignDatabase &database() { return *m_database; }
    /// The netlist behind top(): what it was imported from, or its working copy; null when nothing was imported.
    const Verific::Netlist *source() { return m_sources.of(top()); }
    IVDBNetlist &top();
    IVDBInstance &root();
    /// Whether clocks() may be asked.
    bool hasClocks() const { return m_hasClocks; }
    /// Every clock of every net. Built at the first call. Needs Clocks::Yes.
    const analysis::ClockMap &clocks();
    /// How many clocks there are, without building clocks() for that. Needs Clocks::Yes.
    std::size_t clockCount();
    /// The domain that the database finds for @p net in @p instance: that of the first register it meets, or null.
    IClockDomain *firstClockOf(IVDBInstance &instance, IVDBNet &net);
    /// True for a cell whose insides are not part of the design; what it has of nets are its pins.
    bool isBlackBox(const IVDBNetlist &module) const { return m_sources.isBlackBox(module); }
    /// What the nets of @p module are called.
    ModuleNames &names(IVDBNetlist &module);
    /// What the user calls @p module: with its parameters, when it was derived with any.
    const std::string &nameOf(const IVDBNetlist &module);
    /// The instance of the netlist behind @p instance; null at the top.
    const Verific::Instance *sourceOf(const IVDBInstance &instance) const { return m_sources.of(instance); }
    /// What the netlist keeps of @p instance.
    ItemFacts factsOf(const IVDBInstance &instance) const;

  private:
    IDesignDatabase::SOURCE_TYPE type() const { return static_cast<IDesignDatabase::SOURCE_TYPE>(m_form); }

    std::string m_name;
    Form m_form;
    SourceNetlists m_sources;
    DeviceCensus m_devices;
    std::shared_ptr<DesignDatabase> m_database;
    bool m_hasClocks;
    std::unique_ptr<const analysis::ClockMap> m_clocks;
    std::unordered_map<const IVDBNetlist *, std::unique_ptr<ModuleNames>> m_names;
    std::unordered_map<const IVDBNetlist *, std::string> m_moduleNames;
};

/// Reads @p files: one Yosys JSON netlist, one saved netlist, or Verilog sources.
/// @throws Failure, Interrupted
SourceNetlist readNetlist(const std::vector<std::string> &files, const Reading &reading);

/// Reads @p files and imports them. Notes cells of unknown type when a command asks about clocks. They go into
/// @p database, which is made when it is null.
/// @throws Failure, Interrupted
std::unique_ptr<Design> loadDesign(const std::vector<std::string> &files, Clocks clocks, const Reading &reading,
                                   std::shared_ptr<DesignDatabase> database = nullptr);

/// Both forms of one design, in one database that keeps its source netlists.
struct DesignPair {
    std::unique_ptr<Design> elaborated;
    std::unique_ptr<Design> postMap;
};

/// Reads and imports both forms, whichever form they look like; the elaborated one may be several sources. They go into
/// @p database, which keeps its source netlists and is made when it is null.
/// @throws Failure, Interrupted
DesignPair loadDesignPair(const std::vector<std::string> &elaborated, const std::string &postMap,
                          const Reading &reading, std::shared_ptr<DesignDatabase> database = nullptr);

/// True for names that are taken as Verilog sources: of these a design may have several.
bool isVerilogName(const std::string &file);

} // namespace kvr::netlistdb::tool
