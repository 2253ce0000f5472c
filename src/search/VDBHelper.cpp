#include <netlistdb/VDBHelper.h>

#include "search/FullName.h"

#include <netlistdb/IVDBNetBase.h>
#include <netlistdb/TreeIterator.h>

namespace kvr::netlistdb {

bool VDBHelper::matchAll(TreeIterator *iterator)
{
    if (iterator->isEnd()) {
        return false;
    }
    iterator->getCurrent();
    return true;
}

std::string VDBHelper::getNetFullName(IVDBNetBase *net, IVDBInstance *instance)
{
    return netNamePrefix(instance) + net->getName();
}

} // namespace kvr::netlistdb
