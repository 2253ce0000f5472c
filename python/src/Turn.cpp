#include "Turn.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <pybind11/pybind11.h>
#include <utility>
#include <vector>

namespace kvr::netlistdb::python {

namespace {

constexpr auto WAIT_FOR_TURN = std::chrono::milliseconds(50);

struct Baton {
    std::mutex lock;
    std::condition_variable isFree;
    bool isTaken = false;
    std::vector<std::function<void()>> left; ///< to be freed
};

/// Never destroyed: a thread that outlives the interpreter may still hold it.
Baton &baton()
{
    static Baton &only = *std::make_unique<Baton>().release();
    return only;
}

bool take(std::chrono::milliseconds patience)
{
    Baton &shared = baton();
    std::unique_lock<std::mutex> guard(shared.lock);
    if (!shared.isFree.wait_for(guard, patience, [&] { return !shared.isTaken; })) {
        return false;
    }
    shared.isTaken = true;
    return true;
}

bool takeAtOnce()
{
    Baton &shared = baton();
    const std::lock_guard<std::mutex> guard(shared.lock);
    return !std::exchange(shared.isTaken, true);
}

} // namespace

Turn::Turn()
{
    if (takeAtOnce()) {
        return;
    }
    for (bool isTaken = false; !isTaken;) {
        if (PyErr_CheckSignals() != 0) {
            throw pybind11::error_already_set();
        }
        const pybind11::gil_scoped_release release;
        isTaken = take(WAIT_FOR_TURN);
    }
}

Turn::~Turn()
{
    if (m_isMine) {
        endOfTurn();
    }
}

void endOfTurn()
{
    Baton &shared = baton();
    for (;;) {
        std::vector<std::function<void()>> left;
        {
            const std::lock_guard<std::mutex> guard(shared.lock);
            left.swap(shared.left);
            if (left.empty()) {
                shared.isTaken = false;
                break;
            }
        }
        for (const std::function<void()> &free : left) {
            free();
        }
    }
    shared.isFree.notify_one();
}

void freeInTurn(std::function<void()> free)
{
    {
        const std::lock_guard<std::mutex> guard(baton().lock);
        baton().left.push_back(std::move(free));
    }
    if (takeAtOnce()) {
        endOfTurn();
    }
}

} // namespace kvr::netlistdb::python
