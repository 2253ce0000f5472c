#pragma once

#include "database/DatabaseState.h"

namespace kvr::netlistdb {

/// Stands for the time in which a step of an import makes items, within others or by itself. Tells clock analysis of
/// its begin and end.
class ImportGuard {
  public:
    ImportGuard(ClockAnalysis &clocks, int &depth) : m_clocks(clocks), m_depth(depth)
    {
        if (m_depth == 0) {
            m_clocks.beginImport();
        }
        ++m_depth;
    }
    ~ImportGuard()
    {
        if (--m_depth == 0) {
            m_clocks.endImport();
        }
    }
    ImportGuard(const ImportGuard &) = delete;
    ImportGuard &operator=(const ImportGuard &) = delete;

  private:
    ClockAnalysis &m_clocks;
    int &m_depth;
};

} // namespace kvr::netlistdb
