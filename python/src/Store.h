#pragma once

#include <memory>
#include <netlistdb/DesignDatabase.h>
#include <vector>

namespace Verific {
class Netlist;
}

namespace kvr::netlistdb::python {

/// A database for one more design of the process. Destroying a database clears tables of the netlist database that
/// other designs use: it is emptied instead, and destroyed when no design is left.
class Store {
  public:
    /// In a turn.
    Store();
    /// Empties the database and deletes what nobody else uses below netlists(). In a turn; what refers to items of the
    /// database is gone by then.
    ~Store();
    Store(const Store &) = delete;
    Store &operator=(const Store &) = delete;

    const std::shared_ptr<DesignDatabase> &database() const { return m_database; }
    /// The working copies of what was imported.
    std::vector<const Verific::Netlist *> &netlists() { return m_netlists; }

  private:
    std::shared_ptr<DesignDatabase> m_database;
    std::vector<const Verific::Netlist *> m_netlists;
};

} // namespace kvr::netlistdb::python
