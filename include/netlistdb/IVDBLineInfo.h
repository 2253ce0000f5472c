#pragma once

#include <netlistdb/Export.h>

#include <string>

namespace kvr::netlistdb {

/// A place in a source file. Belongs to the item that it locates.
class NETLISTDB_EXPORT IVDBLineInfo {
  public:
    virtual ~IVDBLineInfo();
    /// Absolute path of the file. Lives as long as this object.
    virtual const std::string &getFilePath() const = 0;
    /// Line number as the netlist records it (0 to 4,294,967,295).
    virtual unsigned long long getLineNumber() const = 0;

  protected:
    /// @{
    /// For derived classes alone, so that no object is cut down to its interface.
    IVDBLineInfo() = default;
    IVDBLineInfo(const IVDBLineInfo &) = default;
    IVDBLineInfo &operator=(const IVDBLineInfo &) = default;
    /// @}
};

} // namespace kvr::netlistdb
