#include "search/RequiredText.h"

#include <cstddef>
#include <string_view>

namespace kvr::netlistdb {

namespace {

constexpr std::string_view punctuation = R"(^$\.*+?()[]{}|/-_:;,<>=!@#%&~"'` )";
constexpr std::string_view special = R"(^$\.*+?()[]{}|)";

bool isLetterOrDigit(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isOneOf(std::string_view set, char c)
{
    return set.find(c) != std::string_view::npos;
}

/// Reads a pattern once, from left to right, and keeps the longest run of literal characters seen.
class PatternReader {
  public:
    explicit PatternReader(std::string_view pattern) : m_rest(pattern) {}

    std::string longestRun()
    {
        while (!m_rest.empty()) {
            if (!readAtom()) {
                return {};
            }
        }
        endRun();
        return m_longest;
    }

  private:
    /// Takes one atom and the quantifiers behind it; false for what this reader does not know.
    bool readAtom()
    {
        const char c = m_rest.front();
        m_rest.remove_prefix(1);
        if (isLetterOrDigit(c) || (isOneOf(punctuation, c) && !isOneOf(special, c))) {
            return finishAtom(c);
        }
        switch (c) {
        case '\\': {
            // Escaped letters and digits are classes, assertions, control characters and back references.
            if (m_rest.empty() || !isOneOf(punctuation, m_rest.front())) {
                return false;
            }
            const char literal = m_rest.front();
            m_rest.remove_prefix(1);
            return finishAtom(literal);
        }
        case '[':
            return skipClass() && finishGap();
        case '.':
        case '^':
        case '$':
            return finishGap();
        default:
            return false;
        }
    }

    bool finishAtom(char literal)
    {
        if (isQuantified()) {
            return finishGap();
        }
        m_run += literal;
        return true;
    }

    bool finishGap()
    {
        endRun();
        return skipQuantifiers();
    }

    bool isQuantified() const { return !m_rest.empty() && isOneOf("*+?{", m_rest.front()); }

    bool skipQuantifiers()
    {
        while (isQuantified()) {
            const bool isInterval = m_rest.front() == '{';
            m_rest.remove_prefix(1);
            if (isInterval && !skipPast('}', "0123456789,")) {
                return false;
            }
        }
        return true;
    }

    /// A class of letters, digits, `_` and `-` only: nothing else can end or continue it in an unexpected place.
    bool skipClass()
    {
        if (!m_rest.empty() && m_rest.front() == '^') {
            m_rest.remove_prefix(1);
        }
        return skipPast(']', "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_-");
    }

    /// Takes characters of @p allowed, at least one, and @p end.
    bool skipPast(char end, std::string_view allowed)
    {
        const std::size_t length = m_rest.find_first_not_of(allowed);
        if (length == 0 || length == std::string_view::npos || m_rest[length] != end) {
            return false;
        }
        m_rest.remove_prefix(length + 1);
        return true;
    }

    void endRun()
    {
        if (m_run.size() > m_longest.size()) {
            m_longest = m_run;
        }
        m_run.clear();
    }

    std::string_view m_rest;
    std::string m_run;
    std::string m_longest;
};

} // namespace

std::string requiredText(const std::string &pattern)
{
    return PatternReader(pattern).longestRun();
}

} // namespace kvr::netlistdb
