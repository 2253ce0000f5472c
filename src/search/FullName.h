#pragma once

#include <string>

namespace kvr::netlistdb {

class IVDBInstance;

/// What the full names of an instance's nets start with: its path and "/", or nothing when there is no instance or
/// its path is empty.
std::string netNamePrefix(const IVDBInstance *instance);

} // namespace kvr::netlistdb
