#pragma once

#include <netlistdb/Export.h>

namespace kvr::netlistdb {

/// Anything with a bit width. Not an item of its own.
class NETLISTDB_EXPORT IWidth {
  public:
    virtual ~IWidth();
    /// Number of bits. For items read from a netlist 0 to 4,294,967,295.
    virtual unsigned long long getWidth() const = 0;
    /// Whether the thing counts as a bus; see the implementing class.
    virtual bool isBus() const = 0;

  protected:
    /// @{
    /// For derived classes alone, so that no object is cut down to its interface.
    IWidth() = default;
    IWidth(const IWidth &) = default;
    IWidth &operator=(const IWidth &) = default;
    /// @}
};

} // namespace kvr::netlistdb
