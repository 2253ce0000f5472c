#include "design/NameSearch.h"

#include "design/Design.h"
#include "design/NamePattern.h"

#include <algorithm>
#include <netlistdb/netlistdb.h>

namespace kvr::netlistdb::tool {

namespace {

VDBSearchParam everythingBelow(Design &design, VDBSearchParam param)
{
    param.itemTypes = ITEM_INSTANCE | ITEM_NET | ITEM_NET_BUS;
    param.filterByName = false;
    if (param.startItem == nullptr) {
        param.startItem = &design.root();
    }
    return param;
}

std::uint32_t kindOf(const OtherNameHit &hit)
{
    if (hit.item != nullptr) {
        return hit.item->getItemType();
    }
    return hit.signal->isVector ? ITEM_NET_BUS : ITEM_NET;
}

} // namespace

NameSearch::NameSearch(Design &design, const Wish &wish)
    : m_pattern(wish.pattern), m_kinds(wish.kinds),
      m_results(design.database().search(everythingBelow(design, wish.param))),
      m_others(design, wish.pattern, wish.param.userNetsOnly)
{
}

std::uint32_t NameSearch::kind() const
{
    return m_isInstance ? std::uint32_t{ITEM_INSTANCE} : kindOf(m_hit);
}

NameSearch::Step NameSearch::step()
{
    if (m_next < m_waiting.size()) {
        return takeWaiting();
    }
    if (m_item == nullptr && !m_isOver) {
        m_item = m_results.next() ? m_results.getCurrent() : nullptr;
        m_isOver = m_item == nullptr;
    }
    if ((m_isOver || m_item->getItemType() != ITEM_NET_BUS) && !m_others.isTaken()) {
        m_waiting = m_others.take();
        m_next = 0;
        m_waiting.erase(std::remove_if(m_waiting.begin(), m_waiting.end(),
                                       [this](const OtherNameHit &hit) { return (kindOf(hit) & m_kinds) == 0; }),
                        m_waiting.end());
        return m_waiting.empty() ? Step::Passed : takeWaiting();
    }
    if (m_item == nullptr) {
        return Step::End;
    }
    IVDBItem &item = *m_item;
    m_item = nullptr;
    return meet(item);
}

NameSearch::Step NameSearch::takeWaiting()
{
    m_isInstance = false;
    m_hit = std::move(m_waiting[m_next++]);
    return Step::Hit;
}

/// Instances come along as the context of their nets, whether they match or not.
NameSearch::Step NameSearch::meet(IVDBItem &item)
{
    if (item.getItemType() == ITEM_INSTANCE) {
        m_instance = static_cast<IVDBInstance *>(&item);
        m_path = m_instance->getPath();
        m_prefix = m_path + (m_path.empty() ? "" : "/");
        m_others.enter(*m_instance, m_prefix);
        m_isInstance = !m_path.empty() && (m_kinds & ITEM_INSTANCE) != 0 && m_pattern.matches(m_path);
        return m_isInstance ? Step::Hit : Step::Passed;
    }
    m_isInstance = false;
    if ((m_kinds & item.getItemType()) == 0) {
        return Step::Passed;
    }
    auto &net = static_cast<IVDBNetBase &>(item);
    m_name.assign(m_prefix).append(nameText(net));
    if (!m_pattern.matches(m_name) || m_others.covers(net)) {
        return Step::Passed;
    }
    m_hit = {};
    m_hit.item = &net;
    return Step::Hit;
}

} // namespace kvr::netlistdb::tool
