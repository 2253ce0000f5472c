// The destructors of the interfaces stand here, so that each interface has one home for its virtual table.

#include <netlistdb/IVDBResultSet.h>
#include <netlistdb/TreeIterator.h>

namespace kvr::netlistdb {

TreeIterator::~TreeIterator() = default;
IVDBResultSet::~IVDBResultSet() = default;

} // namespace kvr::netlistdb
