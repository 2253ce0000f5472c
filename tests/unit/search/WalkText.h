#pragma once

#include <netlistdb/IVDBResultSet.h>
#include <netlistdb/TreeIterator.h>

#include <string>

namespace testsupport {

/// An item in one word: `@instance`, `=bus`, `net`, `>port`, `null`.
std::string wordOf(kvr::netlistdb::IVDBItem *item);

/// The words of all that a cursor still visits, separated by blanks.
std::string walkText(kvr::netlistdb::TreeIterator &iterator);

/// The words of all that a fresh result set finds.
std::string resultText(kvr::netlistdb::IVDBResultSet &results);

} // namespace testsupport
