#pragma once

#include "Loaded.h"

#include <cstddef>
#include <functional>
#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNet.h>
#include <netlistdb/IVDBNetBus.h>
#include <netlistdb/IVDBNetlist.h>

namespace kvr::netlistdb::python {

/// Where the items of a handle come from.
struct Origin {
    std::shared_ptr<Loaded> loaded;
    bool isDevice = false;

    /// @throws Closed
    View &view() const { return loaded->view(isDevice); }
    tool::Design &design() const { return view().design; }
    /// @throws Closed
    void check() const { view(); }
    friend bool operator==(const Origin &a, const Origin &b)
    {
        return a.loaded == b.loaded && a.isDevice == b.isDevice;
    }
};

// Handles are values: which item of which design. Equal ones are the same item.

struct InstanceHandle {
    Origin origin;
    IVDBInstance *instance;

    friend bool operator==(const InstanceHandle &a, const InstanceHandle &b)
    {
        return a.instance == b.instance && a.origin == b.origin;
    }
    std::size_t hash() const { return std::hash<const void *>()(instance); }
};

struct ModuleHandle {
    Origin origin;
    IVDBNetlist *module;

    friend bool operator==(const ModuleHandle &a, const ModuleHandle &b)
    {
        return a.module == b.module && a.origin == b.origin;
    }
    std::size_t hash() const { return std::hash<const void *>()(module); }
};

/// A net, or one bit of a signal that is tied to a constant: that has a place in the signal, and no net.
struct NetHandle {
    Origin origin;
    IVDBInstance *instance;
    IVDBNet *net;
    const tool::OtherSignal *signal = nullptr;
    std::size_t position = 0;

    friend bool operator==(const NetHandle &a, const NetHandle &b)
    {
        return a.net == b.net && a.instance == b.instance && a.signal == b.signal && a.position == b.position &&
               a.origin == b.origin;
    }
    std::size_t hash() const
    {
        const std::hash<const void *> hashOf;
        return (hashOf(net) * 31 + hashOf(signal) + position) * 31 + hashOf(instance);
    }
};

/// A bus, or a vector of nets and constants that is none.
struct BusHandle {
    Origin origin;
    IVDBInstance *instance;
    IVDBNetBus *bus;
    const tool::OtherSignal *signal = nullptr;

    friend bool operator==(const BusHandle &a, const BusHandle &b)
    {
        return a.bus == b.bus && a.instance == b.instance && a.signal == b.signal && a.origin == b.origin;
    }
    std::size_t hash() const
    {
        const std::hash<const void *> hashOf;
        return (hashOf(bus) * 31 + hashOf(signal)) * 31 + hashOf(instance);
    }
};

struct ClockHandle {
    Origin origin;
    analysis::ClockId clock;

    friend bool operator==(const ClockHandle &a, const ClockHandle &b)
    {
        return a.clock == b.clock && a.origin == b.origin;
    }
    std::size_t hash() const { return std::hash<const void *>()(origin.loaded.get()) + clock; }
};

/// Full name of @p name, seen in @p instance.
inline std::string fullName(const IVDBInstance &instance, const std::string &name)
{
    std::string path = instance.getPath();
    return path.empty() ? name : path.append("/").append(name);
}

} // namespace kvr::netlistdb::python
