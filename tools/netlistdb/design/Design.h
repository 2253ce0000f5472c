#pragma once

#include "base/Failure.h"
#include "design/DeviceCensus.h"
#include "design/Form.h"
#include "design/Reading.h"

#include <memory>
#include <netlistdb/DesignDatabase.h>
#include <set>
#include <string>
#include <utility>
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

/// An imported design. Frees the netlist database with itself: one at a time in a process.
class Design {
  public:
    /// @p blackBoxes holds library and name of each.
    Design(std::string name, Form form, Clocks clocks, std::set<std::pair<std::string, std::string>> blackBoxes,
           DeviceCensus devices);
    ~Design();
    Design(const Design &) = delete;
    Design &operator=(const Design &) = delete;

    const std::string &name() const { return m_name; }
    Form form() const { return m_form; }
    const DeviceCensus &devices() const { return m_devices; }
    DesignDatabase &database() { return *m_database; }
    IVDBNetlist &top();
    IVDBInstance &root();
    /// The clock domain that drives @p net in @p instance, or null.
    IClockDomain *clockOf(IVDBInstance &instance, IVDBNet &net);
    std::vector<IClockDomain *> clockDomains() const;
    /// True for a cell whose insides are not part of the design; what it has of nets are its pins.
    bool isBlackBox(const IVDBNetlist &module) const;

  private:
    IDesignDatabase::SOURCE_TYPE type() const { return static_cast<IDesignDatabase::SOURCE_TYPE>(m_form); }

    std::string m_name;
    Form m_form;
    std::set<std::pair<std::string, std::string>> m_blackBoxes;
    DeviceCensus m_devices;
    std::unique_ptr<DesignDatabase> m_database;
};

/// Reads @p files: one Yosys JSON netlist, one saved netlist, or Verilog sources.
/// @throws Failure, Interrupted
SourceNetlist readNetlist(const std::vector<std::string> &files, const Reading &reading);

/// Reads @p files and imports them. Notes which cells nobody knows when clocks are asked about.
/// @throws Failure, Interrupted
std::unique_ptr<Design> loadDesign(const std::vector<std::string> &files, Clocks clocks, const Reading &reading);

/// True for names that are taken as Verilog sources: of these a design may have several.
bool isVerilogName(const std::string &file);

} // namespace kvr::netlistdb::tool
