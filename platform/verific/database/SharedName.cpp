#include "SharedName.h"

#include <cstdint>
#include <cstring>
#include <new>

namespace Verific {

namespace {

using Count = std::uint32_t;

char *allocate(const char *text, std::size_t length)
{
    char *memory = static_cast<char *>(::operator new(sizeof(Count) + length + 1));
    const Count one = 1;
    std::memcpy(memory, &one, sizeof one);
    char *copy = memory + sizeof(Count);
    std::memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}

Count &countOf(char *text)
{
    return *reinterpret_cast<Count *>(text - sizeof(Count));
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
        ++countOf(m_text);
    }
}

SharedName::~SharedName()
{
    if (m_text != nullptr && --countOf(m_text) == 0) {
        ::operator delete(m_text - sizeof(Count));
    }
}

} // namespace Verific
