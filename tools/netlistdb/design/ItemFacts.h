#pragma once

#include "output/Value.h"

#include <string>
#include <utility>
#include <vector>

namespace Verific {
class DesignObj;
}

namespace kvr::netlistdb {
class IVDBItem;
}

namespace kvr::netlistdb::tool {

class ModuleNames;
struct OtherSignal;

/// What the netlist holds of an item besides what every item has.
struct ItemFacts {
    std::vector<std::string> aliases;
    std::vector<std::string> sources; ///< every range that it comes from, as the netlist has it
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string file; ///< of the position; empty without one
    std::uint64_t line = 0;

    Value fileValue() const { return textOrNull(file); }
    Value lineValue() const { return file.empty() ? Value() : Value(line); }
};

/// Facts about an object of the netlist database, which may be null. It has no aliases.
ItemFacts factsOf(const Verific::DesignObj *object);
/// Facts about a net or bus of the module of @p names.
ItemFacts factsOf(ModuleNames &names, const IVDBItem &item);
/// Facts about a vector or constant that is no net or bus.
ItemFacts factsOf(ModuleNames &names, const OtherSignal &signal);

} // namespace kvr::netlistdb::tool
