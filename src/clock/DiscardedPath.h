#pragma once

#include <netlistdb/VDBInstance.h>

#include <typeinfo>

namespace kvr::netlistdb {

/// Builds the path of @p instance and throws it away. Not of our own instances: nobody can tell whether it was done.
inline void discardPath(const IVDBInstance &instance)
{
    if (typeid(instance) != typeid(VDBInstance)) {
        static_cast<void>(instance.getPath());
    }
}

} // namespace kvr::netlistdb
