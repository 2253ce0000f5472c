#pragma once

#include <netlistdb/IClockDomain.h>

namespace kvr::netlistdb {

/// A clock domain, named by the instance's path, "/" and the net's name (the net's name alone at the root).
class NETLISTDB_EXPORT VDBClockDomain : public IClockDomain {
  public:
    /// Neither argument is owned; both must outlive the record.
    /// @throws std::invalid_argument "VDBClockDomain: net is nullptr" or, with a net, "VDBClockDomain: inst is nullptr"
    VDBClockDomain(IVDBNet *net, IVDBInstance *inst);
    ~VDBClockDomain() override;
    VDBClockDomain(const VDBClockDomain &) = delete;
    VDBClockDomain &operator=(const VDBClockDomain &) = delete;

    const std::string &getName() const override;
    std::uint32_t getItemType() const override;
    IVDBNet *getNet() const override;
    IVDBInstance *getInstance() const override;

  private:
    std::string m_name;
    IVDBInstance *m_instance;
    IVDBNet *m_net;
};

} // namespace kvr::netlistdb
