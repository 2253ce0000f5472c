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

/// The form of @p netlist: post-map when some instance in it carries the attribute KVR_ATTRIBUTE_CELL_NAME, or when it
/// has instances and all of them, constants aside, are of cells named KVR_…; elaborated otherwise.
Form detectForm(const Verific::Netlist &netlist);

} // namespace kvr::netlistdb::tool
