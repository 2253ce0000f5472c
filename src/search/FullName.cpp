#include "search/FullName.h"

#include <netlistdb/IVDBInstance.h>

namespace kvr::netlistdb {

std::string netNamePrefix(const IVDBInstance *instance)
{
    std::string prefix;
    if (instance != nullptr) {
        prefix = instance->getPath();
        if (!prefix.empty()) {
            prefix += '/';
        }
    }
    return prefix;
}

} // namespace kvr::netlistdb
