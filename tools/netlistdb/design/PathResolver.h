#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kvr::netlistdb {
class IVDBInstance;
class IVDBNet;
} // namespace kvr::netlistdb

namespace kvr::netlistdb::tool {

class Design;

/// Who gets the advice in messages about paths.
enum class Asker {
    CommandLine, ///< advice names commands and options of the program
    Tool,        ///< advice names tools of the server
};

/// Finds items by their full paths. Names may hold slashes themselves; every way of taking a path apart is tried.
class PathResolver {
  public:
    explicit PathResolver(Design &design, Asker asker = Asker::CommandLine) : m_design(design), m_asker(asker) {}

    /// A net seen in an instance, by any of its names.
    struct Bit {
        IVDBInstance *instance;
        IVDBNet *net;     ///< null for a bit that is tied to a constant without a net
        std::string name; ///< full name by which it was asked for
    };

    /// The net that @p path names by any of its names, or every bit of the bus or vector that it names, from left to
    /// right; also `bus[index]` and `bus[from:to]`.
    /// @throws Failure with the nearest names when there is none.
    std::vector<Bit> nets(const std::string &path);
    /// The same; empty when there is none.
    std::vector<Bit> find(const std::string &path) { return findNets(path); }
    /// The instance that @p path names; "." or "/" is the top.
    /// @throws Failure with the nearest names when there is none.
    IVDBInstance &instance(const std::string &path);
    /// instance(), where no path at all is the top, too.
    IVDBInstance &startOf(const std::string &path);
    /// True when @p path names an instance and no net or bus.
    bool isInstanceOnly(const std::string &path);

  private:
    struct Children {
        std::unordered_map<std::string_view, std::vector<IVDBInstance *>> byName;
        std::size_t longestName = 0;
    };
    /// A way to begin a path: an instance, and where the rest of the path starts.
    struct Beginning {
        IVDBInstance *instance;
        std::size_t rest;
    };

    const Children &childrenOf(IVDBInstance &instance);
    std::vector<Beginning> beginnings(std::string_view path);
    std::vector<Bit> findNets(std::string_view path);
    IVDBInstance *findInstance(std::string_view path);
    bool exists(const std::string &path, bool instancesOnly);
    std::string hint(const std::string &path, bool instancesOnly);
    std::vector<std::string> near(const Beginning &beginning, const std::string &path, bool instancesOnly);
    std::string resembling(const std::vector<std::string> &paths);
    std::string clocksOf(const std::string &path);
    std::vector<std::string> elsewhere(std::string_view name, bool instancesOnly);

    Design &m_design;
    Asker m_asker;
    std::unordered_map<IVDBInstance *, Children> m_children;
};

} // namespace kvr::netlistdb::tool
