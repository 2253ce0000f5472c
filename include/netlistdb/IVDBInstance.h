#pragma once

#include <netlistdb/IVDBItem.h>

#include <vector>

namespace kvr::netlistdb {

class IVDBNetlist;

/// One node of the unfolded instance tree: an occurrence of a module inside its owner instance.
class NETLISTDB_EXPORT IVDBInstance : public IVDBItem {
  public:
    ~IVDBInstance() override;
    /// Number of instances above this one; 0 at the root.
    virtual unsigned long long getDepth() const = 0;
    /// The instance whose module contains this one; null at the root. Not owned.
    virtual IVDBInstance *getOwnerInstance() const = 0;
    /// The module that this is an instance of. Owned by the database.
    virtual IVDBNetlist *getModule() const = 0;
    /// Names from the top down joined with "/", without the ancestors that have no name (the root). Computed anew on
    /// each call, in proportion to its length.
    virtual std::string getPath() const = 0;
    /// Children in the order of the module's instances; owned by this instance.
    virtual const std::vector<IVDBInstance *> &getSubInstances() const = 0;
    /// Appends a child, which must have been made with this instance as its owner, and takes ownership. Always true.
    /// Nothing is checked. Constant time on average.
    virtual bool addSubInstance(IVDBInstance *child) = 0;
    /// Number of parameters given to the instance; 0 at the root.
    virtual std::uint32_t getParameterCount() const = 0;
};

} // namespace kvr::netlistdb
