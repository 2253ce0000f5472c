#pragma once

#include <netlistdb/IVDBLineInfo.h>

#include <memory>
#include <string>
#include <unordered_map>

namespace Verific {
class DesignObj;
}

namespace kvr::netlistdb {

/// The paths of source files, each held once for all positions in its file.
class SourcePaths {
  public:
    std::shared_ptr<const std::string> share(const char *path);

  private:
    std::shared_ptr<const std::string> m_last; ///< most positions are in the file of the one before
    std::unordered_map<std::string, std::shared_ptr<const std::string>> m_all;
};

/// Source position of a netlist object as a VDBLineInfo; null when the object has none or its file is not known. It
/// shares its path with others made with the same @p paths.
std::unique_ptr<IVDBLineInfo> sourcePosition(const Verific::DesignObj &object, SourcePaths *paths = nullptr);

} // namespace kvr::netlistdb
