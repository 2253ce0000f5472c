#include "search/MemberOrder.h"

#include "search/NaturalOrder.h"

#include <netlistdb/IVDBNetBase.h>
#include <netlistdb/NameText.h>

#include <algorithm>
#include <cstddef>

namespace kvr::netlistdb {

namespace {

/// A member with what it is sorted by, so that comparing does not ask the members again and again.
template <typename Key> struct Keyed {
    Key key;
    IVDBNetBase *member;
};

template <typename KeyOf, typename Less>
void sortBy(std::vector<IVDBNetBase *> &members, SortOrder order, KeyOf keyOf, Less less)
{
    using Key = decltype(keyOf(members.front()));
    std::vector<Keyed<Key>> keyed;
    keyed.reserve(members.size());
    for (IVDBNetBase *member : members) {
        keyed.push_back({keyOf(member), member});
    }
    // Natural order is no strict weak order of all names: unlike std::sort, this sort stays within bounds all the same.
    std::stable_sort(keyed.begin(), keyed.end(),
                     [less](const Keyed<Key> &a, const Keyed<Key> &b) { return less(a.key, b.key); });
    if (order == SORT_DESCENDING) {
        std::reverse(keyed.begin(), keyed.end());
    }
    for (std::size_t i = 0; i < keyed.size(); ++i) {
        members[i] = keyed[i].member;
    }
}

} // namespace

void orderMembers(std::vector<IVDBNetBase *> &members, SortOrder byName, SortOrder byWidth)
{
    if (byName != SORT_NONE) {
        sortBy(
            members, byName, [](const IVDBNetBase *member) { return nameText(*member).data(); },
            [](const char *a, const char *b) { return naturalCompareNoCase(a, b) < 0; });
    }
    if (byWidth != SORT_NONE) {
        sortBy(
            members, byWidth, [](const IVDBNetBase *member) { return member->getWidth(); },
            [](unsigned long long a, unsigned long long b) { return a < b; });
    }
}

} // namespace kvr::netlistdb
