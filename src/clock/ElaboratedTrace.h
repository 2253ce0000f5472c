#pragma once

#include "clock/Climb.h"
#include "clock/ClockAnalysis.h"

#include <vector>

namespace Verific {
class Instance;
class Netlist;
class PortRef;
} // namespace Verific

namespace kvr::netlistdb {

/// One query of the elaborated source: walks back from a net, breadth first, through operators, primitives and module
/// boundaries to the first register.
class ElaboratedTrace {
  public:
    ElaboratedTrace(ClockAnalysis &analysis, const InstanceNet &start, const IVDBInstance *root);

    /// The domain of the register's clock, or null. It is recorded for the operators and primitives that were passed.
    IClockDomain *run();

  private:
    /// How the walk goes on after a pair.
    enum class Step { GoOn, HasAnswer, GiveUp };

    void putInLine(const InstanceNet &pair);
    /// Looks at the next pair in line.
    Step look();
    /// Goes on from @p net in m_pair through the cell that drives it.
    Step passDriver(const Verific::Net &net, const Verific::Instance &driver);
    void climb(const Verific::Net *net);
    IClockDomain *clockOfRegister(const IVDBInstance &item, const Verific::Instance &cell,
                                  const Verific::Netlist &netlist) const;
    Step passThroughGenericCell(IVDBInstance &item, const Verific::Instance &cell);
    void descendInto(IVDBInstance &item, const Verific::PortRef &pin);
    void recordAnswer();

    ClockAnalysis &m_analysis;
    const ItemLookup &m_items;
    TraceStorage &m_storage;
    Climb m_climb;
    const IVDBInstance *m_root;
    InstanceNet m_pair;                   ///< the one that is looked at
    std::vector<IVDBInstance *> m_passed; ///< the items of the operators and primitives that were passed
    int m_revisits = 0;                   ///< how often a pair was met that had been visited already
    IClockDomain *m_answer = nullptr;
};

} // namespace kvr::netlistdb
