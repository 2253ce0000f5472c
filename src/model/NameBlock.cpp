#include "model/NameBlock.h"

#include "memory/SmallObjects.h"

#include <cstring>
#include <memory>
#include <new>

namespace kvr::netlistdb {

namespace {

// Never destroyed: items may be used and deleted at any time while the process ends.
const std::string &NO_NAME = *new std::string;

} // namespace

NameBlock *NameBlock::make(std::string_view name)
{
    const std::size_t length = name.size();
    if (length == 0) {
        return nullptr;
    }
    if (length > UINT32_MAX) {
        throw std::bad_alloc();
    }
    auto *const place = static_cast<char *>(memory::allocateObject(sizeof(NameBlock) + length + 1));
    std::memcpy(place + sizeof(NameBlock), name.data(), length);
    place[sizeof(NameBlock) + length] = '\0';
    return new (place) NameBlock(static_cast<std::uint32_t>(length));
}

NameBlock::~NameBlock()
{
    delete m_string.load(std::memory_order_relaxed);
}

void NameBlock::destroy(NameBlock *block)
{
    const std::size_t size = block->size();
    block->~NameBlock();
    memory::freeObject(block, size);
}

const std::string &NameBlock::string(const NameBlock *block)
{
    if (block == nullptr) {
        return NO_NAME;
    }
    const std::string *const made = block->m_string.load(std::memory_order_acquire);
    return made != nullptr ? *made : block->makeString();
}

const std::string &NameBlock::makeString() const
{
    auto fresh = std::make_unique<const std::string>(text(this));
    const std::string *first = nullptr;
    if (m_string.compare_exchange_strong(first, fresh.get(), std::memory_order_acq_rel, std::memory_order_acquire)) {
        return *fresh.release();
    }
    return *first;
}

} // namespace kvr::netlistdb
