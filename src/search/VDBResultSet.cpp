#include <netlistdb/VDBResultSet.h>

#include <netlistdb/TreeIterator.h>

#include <utility>

namespace kvr::netlistdb {

VDBResultSet::VDBResultSet(TreeIterator *iterator, std::function<bool()> predicate)
    : m_iterator(iterator), m_predicate(std::move(predicate))
{
}

VDBResultSet::~VDBResultSet()
{
    try {
        VDBResultSet::cancel();
    } catch (...) {
        // A lock that fails leaves nothing to cancel: nobody can be inside a step of a set that is being destroyed.
    }
    m_iterator.reset(); // before the predicate, which may know it
}

void VDBResultSet::cancel()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    m_active = false;
}

void VDBResultSet::next()
{
    // No guard on purpose: after an exception the set stays locked and must be abandoned.
    m_lock.lock();
    if (!m_active) {
        m_status = RESULT_NONE;
    }
    if (m_started) {
        m_iterator->next();
    }
    m_status = m_predicate() ? RESULT_MATCH : RESULT_NONE;
    m_started = true;
    if (!m_active) {
        m_status = RESULT_NONE;
    }
    m_lock.unlock();
}

void VDBResultSet::previous() {}

std::uint32_t VDBResultSet::status() const
{
    return m_status;
}

IVDBItem *VDBResultSet::getCurrent()
{
    if (!m_started) {
        next();
    }
    return m_iterator->getCurrent();
}

IVDBItem *VDBResultSet::getContext()
{
    return m_iterator->getContext();
}

} // namespace kvr::netlistdb
