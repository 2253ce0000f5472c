#pragma once

#include "Export.h"

namespace Verific {

class Instance;
class Net;
class Port;

/// One connected pin: which port of which instance is connected to which net. Belongs to the instance; its address
/// stays the same while the pin is connected.
class VERIFIC_EXPORT PortRef {
  public:
    Port *GetPort() const { return m_port; }
    Net *GetNet() const { return m_net; }
    Instance *GetInst() const { return m_inst; }
    unsigned IsInput() const;
    unsigned IsOutput() const;
    unsigned IsInout() const;

    PortRef(const PortRef &) = delete;
    PortRef &operator=(const PortRef &) = delete;

  private:
    friend class Instance;
    friend class Net;
    friend class Netlist;
    friend class NetlistCopier;
    friend class NetlistReader;
    friend class NetlistWriter;
    friend class PinBlock;

    PortRef() = default;

    Port *m_port = nullptr; ///< null marks a disconnected pin
    Net *m_net = nullptr;
    Instance *m_inst = nullptr;
    PortRef *m_next = nullptr; ///< next pin on the net, null at the end
    PortRef *m_prev = nullptr; ///< previous pin on the net; of the first pin: the last one
};

} // namespace Verific
