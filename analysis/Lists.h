#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kvr::netlistdb::analysis {

/// No pin, net, cell, and so on.
constexpr std::uint32_t NONE = 0xFFFFFFFFU;

/// Some elements of an array that others own.
template <typename T> class Span {
  public:
    Span(const T *begin, const T *end) : m_begin(begin), m_end(end) {}
    const T *begin() const { return m_begin; }
    const T *end() const { return m_end; }
    std::size_t size() const { return static_cast<std::size_t>(m_end - m_begin); }
    bool empty() const { return m_begin == m_end; }
    const T &operator[](std::size_t at) const { return m_begin[at]; }

  private:
    const T *m_begin;
    const T *m_end;
};

/// Many short lists one behind the other in one array. Filled list by list.
template <typename T> class Lists {
  public:
    std::size_t size() const { return m_first.size() - 1; }
    Span<T> operator[](std::size_t list) const
    {
        return {m_items.data() + m_first[list], m_items.data() + m_first[list + 1]};
    }

    /// Adds an item to the list that the next endList() ends.
    void add(const T &item) { m_items.push_back(item); }
    void endList() { m_first.push_back(static_cast<std::uint32_t>(m_items.size())); }
    template <typename Items> void addList(const Items &items)
    {
        m_items.insert(m_items.end(), items.begin(), items.end());
        endList();
    }
    /// Adds empty lists until there are @p count.
    void pad(std::size_t count)
    {
        while (size() < count) {
            endList();
        }
    }
    void shrink()
    {
        m_first.shrink_to_fit();
        m_items.shrink_to_fit();
    }
    std::size_t memory() const { return m_first.capacity() * sizeof(std::uint32_t) + m_items.capacity() * sizeof(T); }

  private:
    std::vector<std::uint32_t> m_first = std::vector<std::uint32_t>(1, 0);
    std::vector<T> m_items;
};

} // namespace kvr::netlistdb::analysis
