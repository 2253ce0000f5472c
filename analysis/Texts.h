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

/// The name of the library that a view is in; empty outside of one.
inline std::string_view libraryOf(const Verific::Netlist &view)
{
    const Verific::Library *const library = view.Owner() != nullptr ? view.Owner()->Owner() : nullptr;
    return library != nullptr ? textOf(library->Name()) : std::string_view();
}

/// True for an operator or a primitive, told by its mark or by its library.
inline bool isGenericCell(const Verific::Netlist &view)
{
    return view.IsOperator() != 0 || view.IsPrimitive() != 0 || libraryOf(view) == "Operators" ||
           libraryOf(view) == "Primitives";
}

} // namespace kvr::netlistdb::analysis
