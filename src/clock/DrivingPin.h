#pragma once

namespace Verific {
class Instance;
class Net;
class PortRef;
} // namespace Verific

namespace kvr::netlistdb {

/// The pin through which @p driver drives @p net: the first output among the instance's own pins that is on the net, or
/// null. Takes time in proportion to the pins of the instance or to the pins on the net, whichever are fewer: a reset
/// net has hundreds of thousands, and so has a memory of logic cells. To ask for every net of a netlist once therefore
/// takes time in proportion to its pins.
const Verific::PortRef *drivingPin(const Verific::Net *net, const Verific::Instance *driver);

} // namespace kvr::netlistdb
