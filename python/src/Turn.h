#pragma once

#include <functional>
#include <memory>

namespace kvr::netlistdb::python {

/// The netlist database has process-wide tables without locks, and designs remember what was asked: one thread at a
/// time works with them. Whoever holds a Turn makes no Python objects, since collecting garbage may run any code.
class Turn {
  public:
    /// Waits; meanwhile other Python threads run and signals are handled. The caller holds the interpreter lock.
    /// @throws error_already_set when a signal handler raises.
    Turn();
    /// Frees what was left behind meanwhile, then passes the turn on.
    ~Turn();
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

    /// Lets another thread end the turn, by endOfTurn().
    void handOver() { m_isMine = false; }

  private:
    bool m_isMine = true;
};

/// Ends a turn that was handed over. Any thread, without the interpreter lock.
void endOfTurn();

/// Has @p free called by the thread whose turn it is; at once when it is nobody's. Any thread.
void freeInTurn(std::function<void()> free);

/// What @p work returns, in a turn of its own.
template <class Work> auto inTurn(Work work)
{
    const Turn turn;
    return work();
}

} // namespace kvr::netlistdb::python
