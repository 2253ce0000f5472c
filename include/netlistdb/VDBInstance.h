#pragma once

#include <netlistdb/IVDBInstance.h>

#include <cstddef>

namespace Verific {
class Instance;
}

namespace kvr::netlistdb {

/// An instance of the unfolded tree.
class NETLISTDB_EXPORT VDBInstance : public IVDBInstance {
  public:
    /// A root: no name, depth 0 even under an owner, no parameters. Nothing is checked; neither argument is owned, and
    /// @p owner is null for the top of a tree.
    VDBInstance(IVDBNetlist *module, IVDBInstance *owner);
    /// An occurrence of @p inst below @p owner. Neither module nor owner is owned; the owner is not told. @p inst is
    /// read only.
    /// @throws std::invalid_argument "inst is nullptr"
    VDBInstance(IVDBNetlist *module, IVDBInstance *owner, const Verific::Instance *inst);
    /// Deletes the whole tree below, without recursion.
    ~VDBInstance() override;
    VDBInstance(const VDBInstance &) = delete;
    VDBInstance &operator=(const VDBInstance &) = delete;

    const std::string &getName() const override;
    std::uint32_t getItemType() const override;
    unsigned long long getDepth() const override;
    IVDBInstance *getOwnerInstance() const override;
    IVDBNetlist *getModule() const override;
    std::string getPath() const override;
    const std::vector<IVDBInstance *> &getSubInstances() const override;
    bool addSubInstance(IVDBInstance *child) override;
    std::uint32_t getParameterCount() const override;

    /// Makes room for @p count children in all, for builders that know the number.
    void reserveSubInstances(std::size_t count);

  private:
    void deleteSubInstances();

    unsigned long long m_depth = 0;
    std::string m_name;
    IVDBInstance *m_owner;
    IVDBNetlist *m_module;
    std::vector<IVDBInstance *> m_subInstances;
    std::uint32_t m_parameterCount = 0;
    bool m_depthIsChainLength = false; ///< false also below an owner of a foreign class, whose chain may change
};

} // namespace kvr::netlistdb
