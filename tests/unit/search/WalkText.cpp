#include "WalkText.h"

#include <netlistdb/IVDBItem.h>

namespace testsupport {

using namespace kvr::netlistdb;

std::string wordOf(IVDBItem *item)
{
    if (item == nullptr) {
        return "null";
    }
    switch (item->getItemType()) {
    case ITEM_INSTANCE:
        return "@" + item->getName();
    case ITEM_NET_BUS:
        return "=" + item->getName();
    case ITEM_PORT:
        return ">" + item->getName();
    default:
        return item->getName();
    }
}

std::string walkText(TreeIterator &iterator)
{
    std::string text;
    for (; !iterator.isEnd(); iterator.next()) {
        text += (text.empty() ? "" : " ") + wordOf(iterator.getCurrent());
    }
    return text;
}

std::string resultText(IVDBResultSet &results)
{
    std::string text;
    for (results.next(); results.status() == RESULT_MATCH; results.next()) {
        text += (text.empty() ? "" : " ") + wordOf(results.getCurrent());
    }
    return text;
}

} // namespace testsupport
