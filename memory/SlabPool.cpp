#include "memory/SlabPool.h"

#include "memory/Sanitizers.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <sched.h>
#include <sys/mman.h>
#include <sys/single_threaded.h>

namespace kvr::memory {

namespace {

/// From this many slabs of one size on, the pages of a new slab are made in one go: it is going to be filled.
constexpr std::size_t SLABS_TO_FILL = 4;

bool isAligned(const void *address)
{
    return (reinterpret_cast<std::uintptr_t>(address) & (SlabPool::SLAB_SIZE - 1)) == 0;
}

void *map(std::size_t size)
{
    void *const mapped = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) {
        throw std::bad_alloc();
    }
    return mapped;
}

/// Fresh memory of SLAB_SIZE at a multiple of SLAB_SIZE.
void *mapSlab()
{
    void *const likely = map(SlabPool::SLAB_SIZE); // mostly right below the one before, and so in place
    if (isAligned(likely)) {
        return likely;
    }
    munmap(likely, SlabPool::SLAB_SIZE);
    auto *const wide = static_cast<char *>(map(2 * SlabPool::SLAB_SIZE));
    const std::size_t before = -reinterpret_cast<std::uintptr_t>(wide) & (SlabPool::SLAB_SIZE - 1);
    if (before != 0) {
        munmap(wide, before);
    }
    munmap(wide + before + SlabPool::SLAB_SIZE, SlabPool::SLAB_SIZE - before);
    return wide + before;
}

} // namespace

/// The head of a slab. A word for each 64 slots follows, and after the room for that, the slots.
///
/// Free slots are marked in the words and not written to: objects that were made together go together, and most slots
/// are given back to the system without having been used again.
struct SlabPool::Slab {
    /// @p slotSize is a multiple of STEP.
    explicit Slab(std::uint32_t slotSize) : slot(slotSize), inverse((std::uint64_t{1} << 32) / slotSize + 1)
    {
        constexpr std::size_t ALIGNMENT = alignof(std::max_align_t);
        constexpr std::size_t HEADS = (PLACES - 1) * LINE + sizeof(Slab);
        const std::size_t words = ((SLAB_SIZE - HEADS) / slot + WORD_BITS - 1) / WORD_BITS;
        const std::size_t end = HEADS + words * sizeof(std::uint64_t);
        first = static_cast<std::uint32_t>((end + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT);
        slots = static_cast<std::uint32_t>((SLAB_SIZE - first) / slot);
    }

    /// The head of the slab that @p object is in. Heads at the same offset of every slab would share a few lines of the
    /// cache, and the slabs of many sizes are in use at once.
    static Slab *of(void *object)
    {
        const std::uintptr_t begin = beginOf(object);
        return reinterpret_cast<Slab *>(begin + begin / SLAB_SIZE % PLACES * LINE);
    }
    char *begin() { return reinterpret_cast<char *>(beginOf(this)); }
    bool full() const { return used == slots; }
    void *take()
    {
        const std::uint32_t at = used == begun ? begun++ : takeFreed();
        ++used;
        void *const object = begin() + first + std::size_t{at} * slot;
        unpoison(object, slot);
        return object;
    }
    void give(void *object)
    {
        poison(object, slot);
        const auto offset = static_cast<std::uint32_t>(static_cast<char *>(object) - begin()) - first;
        // Division by the size of a slot. Exact: offsets are multiples of it, and far below 2^32.
        const auto at = static_cast<std::uint32_t>(offset * inverse >> 32);
        freed()[at / WORD_BITS] |= std::uint64_t{1} << at % WORD_BITS;
        if (at / WORD_BITS < firstWord) {
            firstWord = at / WORD_BITS;
        }
        --used;
    }
    /// Begins anew, without objects, and gives most of the memory back to the system when much of it was in use.
    void restart()
    {
        std::fill_n(freed(), (begun + WORD_BITS - 1) / WORD_BITS, std::uint64_t{0});
        if (first + std::size_t{begun} * slot > KEPT) {
            madvise(begin() + KEPT, SLAB_SIZE - KEPT, MADV_DONTNEED);
        }
        begun = 0;
        firstWord = 0;
    }

    Slab *previous = nullptr;
    Slab *next = nullptr;
    std::uint32_t used = 0;
    std::uint32_t begun = 0; ///< slots from here on were never used
    std::uint32_t slots;
    std::uint32_t firstWord = 0; ///< no slot is free in the words before
    std::uint32_t slot;          ///< size of each
    std::uint32_t first;         ///< offset of the first
    std::uint64_t inverse;       ///< of the size of a slot, times 2^32, rounded up

  private:
    static constexpr std::size_t KEPT = std::size_t{64} * 1024; ///< the head, all words and some slots
    static constexpr std::uint32_t WORD_BITS = 64;
    static constexpr std::size_t LINE = 64; ///< of the cache
    static constexpr std::size_t PLACES = 16;

    static std::uintptr_t beginOf(const void *place)
    {
        return reinterpret_cast<std::uintptr_t>(place) & ~(SLAB_SIZE - 1);
    }
    std::uint64_t *freed() { return reinterpret_cast<std::uint64_t *>(this + 1); }
    std::uint32_t takeFreed()
    {
        while (freed()[firstWord] == 0) {
            ++firstWord;
        }
        std::uint64_t &word = freed()[firstWord];
        const auto bit = static_cast<std::uint32_t>(__builtin_ctzll(word));
        word &= word - 1;
        return firstWord * WORD_BITS + bit;
    }
};

/// Keeps other threads out of a size class, where there are any.
class SlabPool::Guard {
  public:
    explicit Guard(SizeClass &sizeClass) : m_busy(__libc_single_threaded != 0 ? nullptr : &sizeClass.busy)
    {
        while (m_busy != nullptr && m_busy->test_and_set(std::memory_order_acquire)) {
            sched_yield();
        }
    }
    ~Guard()
    {
        if (m_busy != nullptr) {
            m_busy->clear(std::memory_order_release);
        }
    }
    Guard(const Guard &) = delete;
    Guard &operator=(const Guard &) = delete;

  private:
    std::atomic_flag *m_busy;
};

SlabPool::~SlabPool()
{
    for (SizeClass &sizeClass : m_classes) {
        while (sizeClass.open != nullptr) {
            removeSlab(sizeClass, sizeClass.open);
        }
    }
}

void *SlabPool::allocate(std::size_t size)
{
    SizeClass &sizeClass = classOf(size);
    const Guard guard(sizeClass);
    Slab *slab = sizeClass.open;
    if (slab == nullptr) {
        slab = addSlab(sizeClass, static_cast<std::uint32_t>((size + STEP - 1) / STEP * STEP));
    }
    void *const object = slab->take();
    if (slab->full()) {
        sizeClass.open = slab->next;
        if (slab->next != nullptr) {
            slab->next->previous = nullptr;
            slab->next = nullptr;
        }
    }
    return object;
}

void SlabPool::free(void *object, std::size_t size) noexcept
{
    SizeClass &sizeClass = classOf(size);
    const Guard guard(sizeClass);
    Slab *const slab = Slab::of(object);
    const bool wasFull = slab->full();
    slab->give(object);
    if (wasFull) {
        slab->next = sizeClass.open;
        if (sizeClass.open != nullptr) {
            sizeClass.open->previous = slab;
        }
        sizeClass.open = slab;
    }
    if (slab->used != 0) {
        return;
    }
    if (sizeClass.open == slab && slab->next == nullptr) {
        slab->restart();
    } else {
        removeSlab(sizeClass, slab);
    }
}

SlabPool::Slab *SlabPool::addSlab(SizeClass &sizeClass, std::uint32_t slot)
{
    void *const memory = mapSlab();
    if (++sizeClass.slabs > SLABS_TO_FILL) {
#ifdef MADV_POPULATE_WRITE
        madvise(memory, SLAB_SIZE, MADV_POPULATE_WRITE);
#endif
    }
    m_slabs.fetch_add(1, std::memory_order_relaxed);
    auto *const slab = new (Slab::of(memory)) Slab(slot);
    poison(slab->begin() + slab->first, SLAB_SIZE - slab->first);
    sizeClass.open = slab;
    return slab;
}

void SlabPool::removeSlab(SizeClass &sizeClass, Slab *slab) noexcept
{
    (slab->previous != nullptr ? slab->previous->next : sizeClass.open) = slab->next;
    if (slab->next != nullptr) {
        slab->next->previous = slab->previous;
    }
    char *const begin = slab->begin();
    unpoison(begin, SLAB_SIZE);
    munmap(begin, SLAB_SIZE);
    --sizeClass.slabs;
    m_slabs.fetch_sub(1, std::memory_order_relaxed);
}

} // namespace kvr::memory
