#pragma once

#include <netlistdb/IVDBPort.h>
#include <netlistdb/PooledItem.h>

namespace Verific {
class Port;
class PortBus;
} // namespace Verific

namespace kvr::netlistdb {

/// A port made from a port or port bus of the netlist database.
class NETLISTDB_EXPORT VDBPort : public PooledItem<IVDBPort> {
  public:
    /// A port of one bit.
    /// @throws std::invalid_argument "port is nullptr"
    explicit VDBPort(const Verific::Port *port);
    /// A port as wide as @p portBus; the imports never use this form.
    /// @throws std::invalid_argument "portBus is nullptr"
    explicit VDBPort(const Verific::PortBus *portBus);
    ~VDBPort() override;
    VDBPort(const VDBPort &) = delete;
    VDBPort &operator=(const VDBPort &) = delete;

    const std::string &getName() const override;
    std::uint32_t getItemType() const override;
    bool isBus() const override;
    unsigned long long getWidth() const override;
    int direction() const override;

  private:
    std::string m_name;
    unsigned long long m_width = 0;
    int m_direction = PORT_DIR_INPUT;
};

} // namespace kvr::netlistdb
