#pragma once

#include <netlistdb/IDesignDatabase.h>

namespace kvr::netlistdb::tool {

/// The form of a netlist, and with it the source of the database that it fills.
enum class Form {
    Elaborated = IDesignDatabase::SOURCE_ELABORATED,
    PostMap = IDesignDatabase::SOURCE_POST_MAP,
};

/// As the user writes it.
inline const char *nameOf(Form form)
{
    return form == Form::PostMap ? "post-map" : "elaborated";
}

/// The form of @p netlist. Its instances are looked at in their order, and the first that is certain decides: post-map
/// for a cell outside the library of primitives with the attribute KVR_ATTRIBUTE_CELL_NAME, elaborated for a register
/// that yosys defines and for a module with instances of its own, since post-map netlists are flat. Otherwise it is
/// post-map when some device cell is a register or clock buffer, or when all instances, constants aside, are device
/// cells.
Form detectForm(const Verific::Netlist &netlist);

/// A note for the user about the modules of @p netlist that are not unfolded in @p form; empty when there are none.
std::string noteOnHierarchy(const Verific::Netlist &netlist, Form form);

} // namespace kvr::netlistdb::tool
