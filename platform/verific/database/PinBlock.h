#pragma once

#include "PortRef.h"
#include "memory/SmallObjects.h"

#include <functional>
#include <new>
#include <unordered_map>

namespace Verific {

/// A run of pins of one instance; header and pins are one allocation. Pins never move.
class PinBlock {
  public:
    /// Throws std::bad_alloc.
    static PinBlock *make(unsigned capacity)
    {
        return new (kvr::memory::allocateObject(sizeOf(capacity))) PinBlock(capacity);
    }
    static void free(PinBlock *block)
    {
        if (block != nullptr) {
            free(block, block->capacity);
        }
    }
    /// The same for a block of that capacity, which is not read.
    static void free(PinBlock *block, unsigned capacity) { kvr::memory::freeObject(block, sizeOf(capacity)); }

    PortRef *pins() { return reinterpret_cast<PortRef *>(this + 1); }
    /// Makes the place after the pins in use a disconnected pin, without counting it.
    PortRef *space() { return new (static_cast<void *>(pins() + used)) PortRef; }
    bool full() const { return used == capacity; }
    bool holds(const PortRef *pin)
    {
        return !std::less<const PortRef *>()(pin, pins()) && std::less<const PortRef *>()(pin, pins() + capacity);
    }
    /// True when all pins in use are disconnected.
    bool idle()
    {
        for (unsigned at = 0; at < used; ++at) {
            if (pins()[at].m_port != nullptr) {
                return false;
            }
        }
        return true;
    }

    PinBlock *next = nullptr;
    const unsigned capacity;
    unsigned used = 0; ///< connected and disconnected places; the last one of an instance is a connected one

  private:
    static std::size_t sizeOf(unsigned capacity) { return sizeof(PinBlock) + sizeof(PortRef) * capacity; }

    explicit PinBlock(unsigned size) : capacity(size) {}
};

/// Look-up of pins by port.
class PinIndex : public std::unordered_map<const Port *, PortRef *> {};

} // namespace Verific
