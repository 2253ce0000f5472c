#include <netlistdb/BFSItemIterator.h>

#include "search/PendingItems.h"

#include <netlistdb/IVDBInstance.h>

#include <stdexcept>

namespace kvr::netlistdb {

BFSItemIterator::BFSItemIterator(IDesignDatabase *database, const VDBSearchParam &param)
    : m_param(param), m_database(database), m_pending(std::make_unique<PendingItems>(m_param))
{
    if (auto *start = dynamic_cast<IVDBInstance *>(m_param.startItem)) {
        m_pending->appendStart(start);
    }
}

BFSItemIterator::~BFSItemIterator() = default;

IVDBItem *BFSItemIterator::getCurrent()
{
    return m_pending->settle() ? m_pending->front() : nullptr;
}

void BFSItemIterator::next()
{
    if (m_pending->settle()) {
        stepOn();
    }
}

void BFSItemIterator::stepOn()
{
    if (IVDBInstance *instance = m_pending->frontInstance()) {
        appendChildren(*instance);
    }
    m_pending->pop();
}

bool BFSItemIterator::isEnd()
{
    return !m_pending->settle();
}

IVDBItem *BFSItemIterator::getContext()
{
    return m_context;
}

void BFSItemIterator::setContext(IVDBItem *item)
{
    m_context = item;
}

void BFSItemIterator::fetchMoreItem(IVDBItem *item)
{
    if (auto *instance = dynamic_cast<IVDBInstance *>(item)) {
        appendChildren(*instance);
    }
}

void BFSItemIterator::appendChildren(const IVDBInstance &instance)
{
    if (instance.getModule() == nullptr) {
        throw std::runtime_error("Unknown item");
    }
    if ((m_param.itemTypes & ITEM_INSTANCE) != 0) {
        m_pending->appendChildren(instance);
    }
}

} // namespace kvr::netlistdb
