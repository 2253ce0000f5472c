#pragma once

#include "ModuleTable.h"

#include <string>

namespace kvr::netlistdb::yosys {

/// Fails when a module contains itself, directly or through others.
void refuseRecursion(std::deque<Module> &modules, const ReadFault &fault);

/// The top module: the one called @p wanted, or the only one that was made from it with parameters; when that is empty,
/// the one that is marked as top; when none is, the only module with a body that no other instantiates. Fails when
/// there is none or several.
Module &chooseTop(std::deque<Module> &modules, const std::string &wanted, const ReadFault &fault);

} // namespace kvr::netlistdb::yosys
