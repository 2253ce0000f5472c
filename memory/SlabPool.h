#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace kvr::memory {

/// Memory for small objects that are made and deleted by the million: a slab allocator.
///
/// Objects of one size lie side by side in slabs of 1 MiB, without a header of their own. A slab whose objects are
/// all deleted goes back to the system, but for the first part of one of each size. Safe to use from several threads.
class SlabPool {
  public:
    static constexpr std::size_t SLAB_SIZE = std::size_t{1024} * 1024;
    /// Larger objects are not for slabs.
    static constexpr std::size_t LARGEST = 512;

    SlabPool() = default;
    /// Every object has been freed.
    ~SlabPool();
    SlabPool(const SlabPool &) = delete;
    SlabPool &operator=(const SlabPool &) = delete;

    /// Memory for an object of 1 to LARGEST bytes, aligned to 8.
    /// @throws std::bad_alloc
    void *allocate(std::size_t size);
    /// Takes back what allocate() returned for that size.
    void free(void *object, std::size_t size) noexcept;
    /// Bytes that the slabs take.
    std::size_t mapped() const { return m_slabs.load(std::memory_order_relaxed) * SLAB_SIZE; }

  private:
    static constexpr std::size_t STEP = 8;

    struct Slab;
    class Guard;

    /// Objects of one size, rounded up to a multiple of STEP.
    struct SizeClass {
        std::atomic_flag busy = ATOMIC_FLAG_INIT;
        Slab *open = nullptr; ///< a list of the slabs with room
        std::size_t slabs = 0;
    };

    SizeClass &classOf(std::size_t size) { return m_classes[(size - 1) / STEP]; }
    Slab *addSlab(SizeClass &sizeClass, std::uint32_t slot);
    void removeSlab(SizeClass &sizeClass, Slab *slab) noexcept;

    std::array<SizeClass, LARGEST / STEP> m_classes;
    std::atomic<std::size_t> m_slabs{0};
};

} // namespace kvr::memory
