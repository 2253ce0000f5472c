#pragma once

#include <netlistdb/IVDBItem.h>

namespace kvr::netlistdb {

/// Direction codes of ports.
enum PortDirection : std::int32_t {
    PORT_DIR_INPUT = 0,
    PORT_DIR_OUTPUT = 1,
    PORT_DIR_OTHER = 2, ///< bidirectional or none
};

/// A port of a netlist. Deliberately no IWidth: a port bus of one bit is not a bus, unlike a net bus.
class NETLISTDB_EXPORT IVDBPort : public IVDBItem {
  public:
    ~IVDBPort() override;
    /// True when the port is wider than one bit.
    virtual bool isBus() const = 0;
    /// Number of bits.
    virtual unsigned long long getWidth() const = 0;
    /// One of PortDirection.
    virtual int direction() const = 0;
};

} // namespace kvr::netlistdb
