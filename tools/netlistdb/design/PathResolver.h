#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBItem;
class IVDBNet;
class IVDBNetBus;
class IVDBNetlist;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;

/// Finds items by their full paths. Names may hold slashes themselves; every way of taking a path apart is tried.
class PathResolver {
  public:
    explicit PathResolver(Design &design);
    ~PathResolver();

    /// A net seen in an instance.
    struct Bit {
        IVDBInstance *instance;
        IVDBNet *net;
    };

    /// The net that @p path names, or every bit of the bus that it names; also `bus[index]` for a bit of a bus with a
    /// name of its own.
    /// @throws Failure with the nearest names when there is none.
    std::vector<Bit> nets(const std::string &path);
    /// The instance that @p path names; "." or "/" is the top.
    /// @throws Failure with the nearest names when there is none.
    IVDBInstance &instance(const std::string &path);
    /// instance(), where no path at all is the top, too.
    IVDBInstance &startOf(const std::string &path);
    /// True when @p path names an instance and no net or bus.
    bool isInstanceOnly(const std::string &path);

  private:
    struct ModuleNames;
    struct Children {
        std::unordered_map<std::string_view, std::vector<IVDBInstance *>> byName;
        std::size_t longestName = 0;
    };
    /// A way to begin a path: an instance, and where the rest of the path starts.
    struct Beginning {
        IVDBInstance *instance;
        std::size_t rest;
    };

    const ModuleNames &namesOf(IVDBNetlist &module);
    const Children &childrenOf(IVDBInstance &instance);
    std::vector<Beginning> beginnings(std::string_view path);
    std::vector<Bit> findNets(std::string_view path);
    IVDBInstance *findInstance(std::string_view path);
    bool exists(const std::string &path, bool instancesOnly);
    std::string hint(const std::string &path, bool instancesOnly);
    std::vector<std::string> near(const Beginning &beginning, const std::string &path, bool instancesOnly);
    std::vector<std::string> elsewhere(std::string_view name, bool instancesOnly);

    Design &m_design;
    std::unordered_map<IVDBNetlist *, std::unique_ptr<ModuleNames>> m_modules;
    std::unordered_map<IVDBInstance *, Children> m_children;
};

} // namespace kvr::netlistdb::tool
