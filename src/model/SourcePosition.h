#pragma once

#include <netlistdb/IVDBLineInfo.h>

#include <memory>

namespace Verific {
class DesignObj;
}

namespace kvr::netlistdb {

/// Source position of a netlist object as a VDBLineInfo; null when the object has none or
/// its file is not known.
std::unique_ptr<IVDBLineInfo> sourcePosition(const Verific::DesignObj &object);

} // namespace kvr::netlistdb
