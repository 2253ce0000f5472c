#pragma once

#include <netlistdb/IVDBInstance.h>
#include <string>
#include <vector>

namespace kvr::netlistdb::tool {

/// Walks an instance tree from the top down, an instance before its children and those in their order. Needs no
/// recursion, however deep the tree is.
class InstanceWalk {
  public:
    /// Starts at @p root, which is the first instance. With @p userModulesOnly, instances below it whose module has no
    /// source position are left out with everything below them.
    explicit InstanceWalk(IVDBInstance &root, bool userModulesOnly = false);

    /// The current instance; null at the end.
    IVDBInstance *instance() const { return m_stack.empty() ? nullptr : m_stack.back().instance; }
    /// Instances above the current one, up to where the walk started.
    std::size_t depth() const { return m_stack.size() - 1; }
    /// Full path of the current instance, as getPath() gives it.
    const std::string &path() const { return m_path; }
    /// True when no instance of the walk follows the ancestor at @p level (or the current instance itself) below the
    /// same owner.
    bool isLast(std::size_t level) const;
    /// Steps into the current instance's children.
    void next();
    /// Steps past everything below the current instance.
    void skip();

  private:
    struct Place {
        IVDBInstance *instance;
        std::size_t nextChild;
        std::size_t pathLength; ///< of the owner's path
    };

    void push(IVDBInstance *instance);
    std::size_t nextVisible(const IVDBInstance &owner, std::size_t child) const;

    bool m_userModulesOnly;
    std::vector<Place> m_stack;
    std::string m_path;
};

} // namespace kvr::netlistdb::tool
