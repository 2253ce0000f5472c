#pragma once

#include "clock/Climb.h"
#include "clock/ClockAnalysis.h"

namespace Verific {
class PortRef;
}

namespace kvr::netlistdb {

/// One query of the post-map source: walks back from a net, breadth first, to the first sequential cell whose clock
/// pins say which clock drives the net.
class PostMapTrace {
  public:
    PostMapTrace(ClockAnalysis &analysis, const InstanceNet &start);

    /// The clock domain that drives the net, or null. Every pair that was passed is remembered under it.
    IClockDomain *run();

  private:
    /// Takes the next pair from the line; false when none is left.
    bool takeNext();
    void putInLine(const InstanceNet &pair);
    /// The way ends here: nothing drives the net, and there is no level above.
    void endAtDeadEnd();
    void climb();
    void passThrough(const Verific::Instance &cell);
    IClockDomain *domainOf(const Verific::Net *clock) const;
    void rememberUnder(IClockDomain *domain);
    void rememberThatNothingClocks();

    ClockAnalysis &m_analysis;
    const ItemLookup &m_items;
    TraceStorage &m_storage;
    Climb m_climb;
    IVDBInstance *m_startInstance;
    InstanceNet m_pair;                  ///< the one that is looked at
    const Verific::Net *m_net = nullptr; ///< what its item was made from, or null
};

} // namespace kvr::netlistdb
