#include "memory/SlabPool.h"

#include "memory/Sanitizers.h"

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

/// The head of a slab; its slots follow.
struct SlabPool::Slab {
    /// What a free slot holds.
    struct Slot {
        Slot *next;
    };

    explicit Slab(std::size_t slotSize) : slot(slotSize) {}

    static Slab *of(void *object)
    {
        return reinterpret_cast<Slab *>(reinterpret_cast<std::uintptr_t>(object) & ~(SLAB_SIZE - 1));
    }
    bool full() const { return freed == nullptr && unused + slot > SLAB_SIZE; }
    void *take()
    {
        void *object = freed;
        if (object != nullptr) {
            unpoison(object, slot);
            freed = freed->next;
        } else {
            object = reinterpret_cast<char *>(this) + unused;
            unpoison(object, slot);
            unused += slot;
        }
        ++used;
        return object;
    }
    void give(void *object)
    {
        freed = new (object) Slot{freed};
        poison(object, slot);
        --used;
    }
    /// Begins anew, without objects.
    void restart()
    {
        freed = nullptr;
        unused = sizeof(Slab);
    }

    Slab *previous = nullptr;
    Slab *next = nullptr;
    Slot *freed = nullptr;
    std::size_t unused = sizeof(Slab); ///< offset of the slots that were never used
    std::size_t used = 0;
    std::size_t slot;
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
        slab = addSlab(sizeClass, (size + STEP - 1) / STEP * STEP);
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

SlabPool::Slab *SlabPool::addSlab(SizeClass &sizeClass, std::size_t slot)
{
    void *const memory = mapSlab();
    if (++sizeClass.slabs > SLABS_TO_FILL) {
#ifdef MADV_POPULATE_WRITE
        madvise(memory, SLAB_SIZE, MADV_POPULATE_WRITE);
#endif
    }
    m_slabs.fetch_add(1, std::memory_order_relaxed);
    auto *const slab = new (memory) Slab(slot);
    poison(slab + 1, SLAB_SIZE - sizeof(Slab));
    sizeClass.open = slab;
    return slab;
}

void SlabPool::removeSlab(SizeClass &sizeClass, Slab *slab) noexcept
{
    (slab->previous != nullptr ? slab->previous->next : sizeClass.open) = slab->next;
    if (slab->next != nullptr) {
        slab->next->previous = slab->previous;
    }
    unpoison(slab, SLAB_SIZE);
    munmap(slab, SLAB_SIZE);
    --sizeClass.slabs;
    m_slabs.fetch_sub(1, std::memory_order_relaxed);
}

} // namespace kvr::memory
