// The matchers for iterators that yield one kind of item.

#include <netlistdb/VDBHelper.h>

#include "search/BoundedExpression.h"

#include <netlistdb/IVDBInstance.h>
#include <netlistdb/IVDBNetlist.h>
#include <netlistdb/IVDBPort.h>
#include <netlistdb/NameText.h>
#include <netlistdb/TreeIterator.h>

#include <stdexcept>
#include <string_view>

namespace kvr::netlistdb {

namespace {

template <typename Kind, typename Hit> bool matchName(TreeIterator &iterator, Hit hit)
{
    for (; !iterator.isEnd(); iterator.next()) {
        const auto *item = dynamic_cast<Kind *>(iterator.getCurrent());
        if (item == nullptr) {
            throw std::runtime_error("Unknown item iterated");
        }
        if (hit(nameText(*item))) {
            return true;
        }
    }
    return false;
}

template <typename Kind> bool matchPart(TreeIterator &iterator, const std::string &pattern)
{
    return matchName<Kind>(iterator,
                           [&pattern](std::string_view name) { return name.find(pattern) != std::string_view::npos; });
}

template <typename Kind> bool matchWhole(TreeIterator &iterator, const std::regex &expression)
{
    BoundedExpression bounded(expression);
    return matchName<Kind>(iterator, [&bounded](std::string_view name) { return bounded.matches(name); });
}

} // namespace

bool VDBHelper::matchInstance(TreeIterator *iterator, const std::string &pattern, bool /*ignoreCase*/)
{
    return matchPart<IVDBInstance>(*iterator, pattern);
}

bool VDBHelper::matchNetlist(TreeIterator *iterator, const std::string &pattern, bool /*ignoreCase*/)
{
    return matchPart<IVDBNetlist>(*iterator, pattern);
}

bool VDBHelper::matchPort(TreeIterator *iterator, const std::string &pattern, bool /*ignoreCase*/)
{
    return matchPart<IVDBPort>(*iterator, pattern);
}

bool VDBHelper::matchInstanceRegex(TreeIterator *iterator, const std::regex &expression)
{
    return matchWhole<IVDBInstance>(*iterator, expression);
}

bool VDBHelper::matchNetlistRegex(TreeIterator *iterator, const std::regex &expression)
{
    return matchWhole<IVDBNetlist>(*iterator, expression);
}

bool VDBHelper::matchPortRegex(TreeIterator *iterator, const std::regex &expression)
{
    return matchWhole<IVDBPort>(*iterator, expression);
}

} // namespace kvr::netlistdb
