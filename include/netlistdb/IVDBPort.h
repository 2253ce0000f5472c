#pragma once

#include <netlistdb/IVDBItem.h>

namespace kvr::netlistdb {

/// Direction codes of ports.
enum PortDirection : std::int32_t {
    PORT_DIR_INPUT = 0,  ///< input
    PORT_DIR_OUTPUT = 1, ///< output
    PORT_DIR_OTHER = 2,  ///< bidirectional or none
};

/// A port of a netlist. Deliberately no IWidth: a port bus of one bit is not a bus, unlike a net bus.
class NETLISTDB_EXPORT IVDBPort : public IVDBItem {
  public:
    ~IVDBPort() override;
    /// True when the port is wider than one bit.
    virtual bool isBus() const = 0;
    /// Number of bits (0 to 4,294,967,295); 1 for every port that the imports make.
    virtual unsigned long long getWidth() const = 0;
    /// One of PortDirection.
    virtual int direction() const = 0;
};

} // namespace kvr::netlistdb
