#pragma once

#include <deque>
#include <netlistdb/IVDBInstance.h>

namespace kvr::netlistdb::tool {

/// Walks an instance and everything below it level by level, each level in the order of the netlist.
class LevelWalk {
  public:
    LevelWalk() = default;
    explicit LevelWalk(IVDBInstance &start) : m_waiting{&start} {}

    /// The next instance, the first being where the walk starts; null at the end.
    IVDBInstance *next()
    {
        if (m_waiting.empty()) {
            return nullptr;
        }
        IVDBInstance *const instance = m_waiting.front();
        m_waiting.pop_front();
        m_waiting.insert(m_waiting.end(), instance->getSubInstances().begin(), instance->getSubInstances().end());
        return instance;
    }

  private:
    std::deque<IVDBInstance *> m_waiting;
};

} // namespace kvr::netlistdb::tool
