#include <netlistdb/VDBHelper.h>

#include "search/FullName.h"

#include <netlistdb/IVDBNetBase.h>
#include <netlistdb/NameText.h>
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
    std::string fullName = netNamePrefix(instance);
    fullName += nameText(*net);
    return fullName;
}

} // namespace kvr::netlistdb
