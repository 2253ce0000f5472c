#include "search/BoundedExpression.h"

#include "search/ExpressionStack.h"
#include "search/ThreadStack.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>

namespace kvr::netlistdb {

namespace {

[[noreturn, gnu::noinline, gnu::cold]] void throwStackError()
{
    throw std::regex_error(std::regex_constants::error_stack);
}

/// How deep the search that runs on this thread may go. Not part of the positions, which the executor copies by the
/// thousand.
thread_local std::uintptr_t deepest = 0;

/// A position in a text that looks at the stack whenever it is copied, advanced or compared: once at least in every
/// recursion of the executor of std::regex, but for those that stackBetweenPositions counts.
class Position {
  public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char *;
    using reference = const char &;

    Position() = default;
    explicit Position(const char *at) : m_at(at) {}
    Position(const Position &other) : m_at(other.m_at) { check(); }
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): assigning a pointer to itself is harmless
    Position &operator=(const Position &other)
    {
        check();
        m_at = other.m_at;
        return *this;
    }
    ~Position() = default;

    reference operator*() const { return *m_at; }
    Position &operator++()
    {
        check();
        ++m_at;
        return *this;
    }
    Position operator++(int) { return Position(m_at++); }
    Position &operator--()
    {
        --m_at;
        return *this;
    }
    Position operator--(int) { return Position(m_at--); }
    Position &operator+=(difference_type count)
    {
        m_at += count;
        return *this;
    }
    friend difference_type operator-(const Position &a, const Position &b) { return a.m_at - b.m_at; }
    friend bool operator==(const Position &a, const Position &b)
    {
        check();
        return a.m_at == b.m_at;
    }
    friend bool operator!=(const Position &a, const Position &b) { return !(a == b); }

  private:
    static void check()
    {
        if (stackPosition() < deepest) {
            throwStackError();
        }
    }

    const char *m_at = nullptr;
};

} // namespace

std::regex compileBounded(const std::string &pattern, std::regex_constants::syntax_option_type options)
{
    if (stackLeft() < stackReserve + stackToCompile(pattern)) {
        throwStackError();
    }
    return std::regex(pattern, options);
}

struct BoundedExpression::Checked {
    std::match_results<Position> match;
};

BoundedExpression::BoundedExpression(const std::regex &expression, Way way)
    : m_expression(expression),
      m_stackPerPosition(way == Way::Checked ? std::numeric_limits<std::size_t>::max() : stackPerPosition(expression))
{
}

BoundedExpression::~BoundedExpression() = default;

bool BoundedExpression::isHarmless(std::string_view text) const
{
    const std::size_t left = stackLeft();
    return left > stackReserve && text.size() < (left - stackReserve) / m_stackPerPosition;
}

BoundedExpression::Checked &BoundedExpression::checked()
{
    if (m_checked == nullptr) {
        m_checked = std::make_unique<Checked>();
    }
    const std::size_t kept = stackReserve + stackBetweenPositions(m_expression);
    if (stackLeft() < kept) {
        throwStackError();
    }
    deepest = stackEnd() + kept;
    return *m_checked;
}

// Left to itself GCC calls the copying of sub-matches, once for every character of a name. Flattening is for release
// builds: it takes seconds to compile there, and minutes with sanitizers.
#if defined(NDEBUG)
[[gnu::flatten]]
#endif
bool BoundedExpression::isFoundIn(std::string_view text)
{
    const char *begin = text.data();
    const char *end = begin + text.size();
    if (isHarmless(text)) {
        return std::regex_search(begin, end, m_match, m_expression, std::regex_constants::match_any);
    }
    return isFoundChecked(begin, end);
}

bool BoundedExpression::isFoundChecked(const char *begin, const char *end)
{
    return std::regex_search(Position(begin), Position(end), checked().match, m_expression,
                             std::regex_constants::match_any);
}

bool BoundedExpression::matches(std::string_view text)
{
    const char *begin = text.data();
    const char *end = begin + text.size();
    if (isHarmless(text)) {
        return std::regex_match(begin, end, m_match, m_expression);
    }
    return std::regex_match(Position(begin), Position(end), checked().match, m_expression);
}

} // namespace kvr::netlistdb
