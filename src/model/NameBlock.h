#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kvr::netlistdb {

/// The name of an item, or of all occurrences of an instance: one block of slab memory, with the characters behind the
/// head. An empty name has no block.
///
/// Items show their names as std::string, whose characters would come from the heap one by one. Few of millions of
/// items are ever asked, so a string is made when it is asked for first.
///
/// Several threads may read one name. Sharing and letting go are for one thread at a time.
class NameBlock {
  public:
    /// A block with one holder; null for an empty @p name.
    /// @throws std::bad_alloc
    static NameBlock *make(std::string_view name);
    /// The same for a name of the netlist database, which may be null.
    static NameBlock *make(const char *name) { return name != nullptr ? make(std::string_view(name)) : nullptr; }
    /// The same block for one more holder; @p block may be null.
    static NameBlock *share(NameBlock *block)
    {
        if (block != nullptr) {
            ++block->m_holders;
        }
        return block;
    }
    /// Lets go of @p block, which may be null, and frees it when nobody else holds it.
    static void release(NameBlock *block)
    {
        if (block == nullptr) {
            return;
        }
        if (block->m_holders == 1) { // not counted down to 0: that would write to memory that is about to go
            destroy(block);
        } else {
            --block->m_holders;
        }
    }
    NameBlock(const NameBlock &) = delete;
    NameBlock &operator=(const NameBlock &) = delete;

    /// The characters of @p block, NUL-terminated; empty for null.
    static std::string_view text(const NameBlock *block)
    {
        return block != nullptr ? std::string_view(block->characters(), block->m_length) : "";
    }
    /// The name as a string that lives as long as the block; an empty one for null.
    /// @throws std::bad_alloc when nobody asked before
    static const std::string &string(const NameBlock *block);

  private:
    explicit NameBlock(std::uint32_t length) : m_length(length) {}
    ~NameBlock();

    static void destroy(NameBlock *block);
    const std::string &makeString() const;
    std::size_t size() const { return sizeof(NameBlock) + m_length + 1; }
    const char *characters() const { return reinterpret_cast<const char *>(this + 1); }

    mutable std::atomic<const std::string *> m_string{nullptr};
    std::uint32_t m_holders = 1;
    std::uint32_t m_length;
};

} // namespace kvr::netlistdb
