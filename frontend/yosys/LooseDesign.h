#pragma once

#include "DataBase.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb::yosys {

/// The libraries that the reader fills.
enum class Home { Work, Operators, Primitives, Constants };

/// The netlists of one file while it is being read: outside the global libset, which gets them all at once or not at
/// all. Netlists that are not attached die with the object.
class LooseDesign {
  public:
    LooseDesign() = default;
    ~LooseDesign();
    LooseDesign(const LooseDesign &) = delete;
    LooseDesign &operator=(const LooseDesign &) = delete;

    /// Makes an empty netlist for the cell @p cellName of library @p home. Its view name ("netlist", "netlist_2", …) is
    /// one that the cell does not have yet, here or in the global libset.
    Verific::Netlist *add(Home home, std::string_view cellName);

    /// Puts every netlist into its cell and library of the global libset, made where they are missing. When it throws,
    /// the libset is as it was before.
    void attach();

  private:
    struct Entry {
        std::unique_ptr<Verific::Netlist> netlist;
        Home home;
        std::string cellName;
    };

    std::vector<Entry> m_entries;
    std::unordered_map<std::string, unsigned> m_views; ///< home and cell name -> latest number of a view
};

} // namespace kvr::netlistdb::yosys
