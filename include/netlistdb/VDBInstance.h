#pragma once

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/PooledItem.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace Verific {
class Instance;
}

namespace kvr::netlistdb {

class InstanceTraits;
class NameBlock;

/// An instance of the unfolded tree.
class NETLISTDB_EXPORT VDBInstance : public PooledItem<IVDBInstance> {
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

    /// The text of getName(), NUL-terminated, without the string that getName() makes when it is called first.
    std::string_view nameText() const;

    /// Makes room for @p count children in all, for builders that know the number.
    void reserveSubInstances(std::size_t count);

  private:
    friend class InstanceBuilder;

    /// An occurrence below @p owner of an instance with these traits.
    __attribute__((visibility("hidden")))
    VDBInstance(IVDBNetlist *module, IVDBInstance *owner, const InstanceTraits &traits);
    std::vector<IVDBInstance *> &subInstances();
    void deleteSubInstances();

    unsigned long long m_depth = 0;
    NameBlock *m_name = nullptr; ///< shared with the other occurrences of the instance; null: empty
    IVDBInstance *m_owner;
    IVDBNetlist *m_module;
    std::unique_ptr<std::vector<IVDBInstance *>> m_subInstances; ///< made with the first
    std::uint32_t m_parameterCount = 0;
    bool m_depthIsChainLength = false; ///< false also below an owner of a foreign class, whose chain may change
};

} // namespace kvr::netlistdb
