#include "search/ExpressionStack.h"

#include "memory/Sanitizers.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace kvr::netlistdb {

namespace {

#ifdef NDEBUG
constexpr bool isOptimised = true;
#else
constexpr bool isOptimised = false;
#endif
constexpr std::size_t perState = isOptimised && !memory::IS_SANITIZED ? 512 : 1024;
constexpr std::size_t perLookahead = 4 * perState;

// The compiler of std::regex may come from any library of the process, whatever the build of this one.
constexpr std::size_t perTerm = 640;
constexpr std::size_t perGroup = 3072;

/// The place behind the bracket expression whose first character is at @p at.
std::size_t skipBracket(std::string_view pattern, std::size_t at)
{
    while (at < pattern.size()) {
        const char c = pattern[at++];
        if (c == ']') {
            break;
        }
        if (c == '\\') {
            ++at;
        } else if (c == '[' && at < pattern.size() &&
                   std::string_view(".:=").find(pattern[at]) != std::string_view::npos) {
            // A named class, which ends with its first character.
            at = std::min(pattern.find(pattern[at], at + 1), pattern.size() - 1) + 2;
        }
    }
    return at;
}

#if defined(__GLIBCXX__)

using Automaton = std::__detail::_NFA<std::regex_traits<char>>;

/// Names the compiled states of an expression, which the standard gives no access to: an explicit instantiation may
/// name a private member.
const Automaton *automatonOf(const std::regex &expression);
template <std::shared_ptr<const Automaton> std::regex::*Member> struct AutomatonAccess {
    friend const Automaton *automatonOf(const std::regex &expression) { return (expression.*Member).get(); }
};
template struct AutomatonAccess<&std::regex::_M_automaton>;

#endif

} // namespace

std::size_t stackToCompile(std::string_view pattern)
{
    std::vector<std::size_t> outerTerms; // of each open group: terms before it
    std::size_t terms = 0;               // before the next one in its sequence
    std::size_t outer = 0;               // what the open groups take
    std::size_t most = 0;
    for (std::size_t at = 0; at < pattern.size();) {
        const char c = pattern[at++];
        if (c == '(') {
            outerTerms.push_back(terms);
            outer += terms * perTerm + perGroup;
            terms = 0;
        } else if (c == ')' && !outerTerms.empty()) {
            terms = outerTerms.back();
            outer -= terms * perTerm + perGroup;
            outerTerms.pop_back();
            ++terms;
        } else if (c == '|') {
            terms = 0;
        } else {
            if (c == '\\') {
                // `\c` takes one character more.
                at += at < pattern.size() && pattern[at] == 'c' ? 2 : 1;
            } else if (c == '[') {
                at = skipBracket(pattern, at);
            }
            ++terms;
        }
        most = std::max(most, outer + terms * perTerm);
    }
    return most;
}

std::size_t stackPerPosition([[maybe_unused]] const std::regex &expression)
{
#if defined(__GLIBCXX__)
    std::size_t states = 1; // one that takes the character, or accepts
    std::size_t repetitions = 0;
    if (const Automaton *automaton = automatonOf(expression)) {
        for (const auto &state : *automaton) {
            switch (state._M_opcode()) {
            case std::__detail::_S_opcode_match:
            case std::__detail::_S_opcode_accept:
                break;
            case std::__detail::_S_opcode_subexpr_lookahead: // starts from its place once more
                return std::numeric_limits<std::size_t>::max();
            case std::__detail::_S_opcode_repeat:
                ++repetitions;
                [[fallthrough]];
            default:
                ++states;
            }
        }
    }
    // Every loop of the automaton goes through a repetition, each of which the executor begins twice at most where it
    // stands; between two of them it comes to no state twice.
    return states * (2 * repetitions + 1) * perState;
#else
    return std::numeric_limits<std::size_t>::max();
#endif
}

std::size_t stackBetweenPositions([[maybe_unused]] const std::regex &expression)
{
#if defined(__GLIBCXX__)
    // At each state but these the executor copies, advances or compares a position before it goes on to the next. It
    // comes to each of them once at most in between: every loop of the automaton goes through a repetition, and to go
    // round again from there it copies a position or compares two.
    std::size_t stack = 0;
    if (const Automaton *automaton = automatonOf(expression)) {
        for (const auto &state : *automaton) {
            switch (state._M_opcode()) {
            case std::__detail::_S_opcode_alternative:
            case std::__detail::_S_opcode_repeat: // the way out, when it is tried first
                stack += perState;
                break;
            case std::__detail::_S_opcode_subexpr_lookahead:
                stack += perLookahead;
                break;
            default:
                break;
            }
        }
    }
    return stack;
#else
    return 0;
#endif
}

} // namespace kvr::netlistdb
