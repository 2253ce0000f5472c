#pragma once

#include <DataBase.h>

#include <string_view>

namespace kvr::netlistdb::analysis {

/// A text of the netlist database, which has none at times.
inline std::string_view textOf(const char *text)
{
    return text != nullptr ? std::string_view(text) : std::string_view();
}

/// The name of the cell that a view is of; empty without a view.
inline std::string_view typeOf(const Verific::Netlist *view)
{
    return view != nullptr ? textOf(view->CellBaseName()) : std::string_view();
}

} // namespace kvr::netlistdb::analysis
