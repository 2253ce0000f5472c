#pragma once

#include <unordered_map>

namespace Verific {
class Instance;
class Net;
class PortRef;
} // namespace Verific

namespace kvr::netlistdb {

/// Finds the pin through which an instance drives a net, among the instance's own pins: a reset net has hundreds of
/// thousands of loads, an instance rarely more than a few dozen pins. Instances with many pins get an index.
class DrivingPins {
  public:
    /// The first output pin of @p driver that is on @p net, or null.
    Verific::PortRef *find(const Verific::Net *net, const Verific::Instance *driver);
    /// Forgets the indexes, as their instances may be gone.
    void clear() { m_wide.clear(); }

  private:
    static constexpr unsigned MANY = 48;
    using Outputs = std::unordered_map<const Verific::Net *, Verific::PortRef *>;

    std::unordered_map<const Verific::Instance *, Outputs> m_wide;
};

} // namespace kvr::netlistdb
