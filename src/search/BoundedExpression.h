#pragma once

#include <cstddef>
#include <memory>
#include <regex>
#include <string>
#include <string_view>

namespace kvr::netlistdb {

// std::regex takes stack for each group and character of an expression and for each character that it matches. These
// stop before the stack of the calling thread ends, and else do the same.

/// Compiles @p pattern.
/// @throws std::regex_error, with the code error_stack when compiling might need more stack than is left.
std::regex compileBounded(const std::string &pattern, std::regex_constants::syntax_option_type options);

/// Looks for one expression in many texts. Where a bound on the stack says that a text is harmless the standard library
/// works on it as it stands; else it works on positions that look at the stack, which takes about a fifth more time.
class BoundedExpression {
  public:
    enum class Way { AsTheTextAllows, Checked };

    /// @p expression must outlive this object. @p way is for tests alone.
    explicit BoundedExpression(const std::regex &expression, Way way = Way::AsTheTextAllows);
    ~BoundedExpression();
    BoundedExpression(const BoundedExpression &) = delete;
    BoundedExpression &operator=(const BoundedExpression &) = delete;

    /// True when std::regex_search finds the expression in @p text, with the flag match_any.
    /// @throws std::regex_error with the code error_stack when the search needs more stack than is left.
    bool isFoundIn(std::string_view text);
    /// True when std::regex_match matches the expression with the whole @p text.
    /// @throws std::regex_error with the code error_stack when matching needs more stack than is left.
    bool matches(std::string_view text);

  private:
    struct Checked;

    bool isHarmless(std::string_view text) const;
    Checked &checked();
    [[gnu::noinline]] bool isFoundChecked(const char *begin, const char *end);

    const std::regex &m_expression;
    std::size_t m_stackPerPosition;
    std::cmatch m_match; ///< kept for its memory alone, like that of m_checked
    std::unique_ptr<Checked> m_checked;
};

} // namespace kvr::netlistdb
