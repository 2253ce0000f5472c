#include "SharedName.h"

#include "memory/SmallObjects.h"

#include <cstdint>
#include <cstring>
#include <new>

namespace Verific {

namespace {

/// What stands before the characters of a text.
struct Head {
    std::size_t size() const { return sizeof(Head) + length + 1; }

    std::uint32_t holders;
    std::uint32_t length;
};

Head *headOf(char *text)
{
    return reinterpret_cast<Head *>(text) - 1;
}

char *allocate(const char *text, std::size_t length)
{
    if (length >= UINT32_MAX - sizeof(Head)) {
        throw std::bad_alloc();
    }
    const Head head{1, static_cast<std::uint32_t>(length)};
    char *const copy = reinterpret_cast<char *>(new (kvr::memory::allocateObject(head.size())) Head(head) + 1);
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}

} // namespace

SharedName::SharedName(const char *text) : m_text(text != nullptr ? allocate(text, std::strlen(text)) : nullptr) {}

SharedName::SharedName(const char *text, std::size_t length)
    : m_text(text != nullptr ? allocate(text, length) : nullptr)
{
}

SharedName::SharedName(const SharedName &other) : m_text(other.m_text)
{
    if (m_text != nullptr) {
        ++headOf(m_text)->holders;
    }
}

SharedName::~SharedName()
{
    if (m_text == nullptr) {
        return;
    }
    Head *const head = headOf(m_text);
    if (head->holders == 1) { // not counted down to 0: that would write to memory that is about to go
        kvr::memory::freeObject(head, head->size());
    } else {
        --head->holders;
    }
}

} // namespace Verific
