#pragma once

namespace Verific {
class DesignObj;
}

namespace kvr::netlistdb {

class IVDBLineInfo;

/// Source position of a netlist object as a new VDBLineInfo, which the caller owns; null when the object has none or
/// its file is not known.
IVDBLineInfo *sourcePosition(const Verific::DesignObj &object);

} // namespace kvr::netlistdb
