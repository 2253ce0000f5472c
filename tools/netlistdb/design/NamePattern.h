#pragma once

#include <optional>
#include <regex>
#include <string>

namespace kvr::netlistdb::tool {

/// What full names are matched against.
class NamePattern {
  public:
    enum class Kind { Plain, Regex, Glob };

    /// @throws Failure for a bad regular expression, saying what is wrong with it.
    NamePattern(Kind kind, const std::string &text, bool ignoreCase);

    /// The compiled expression; null for plain text.
    const std::regex *expression() const { return m_expression ? &*m_expression : nullptr; }
    const std::string &text() const { return m_text; }
    bool ignoreCase() const { return m_ignoreCase; }
    /// The test that a search makes on nets, for other names.
    bool matches(const std::string &fullName) const;

  private:
    std::string m_text;
    std::string m_folded;
    bool m_ignoreCase;
    std::optional<std::regex> m_expression;
};

/// The regular expression that matches what the wildcard @p glob does: `*` and `?` within one level of the hierarchy,
/// `**` across levels, everything else itself (after a backslash the wildcards, too). Matches whole names only.
std::string regexOfGlob(const std::string &glob);

} // namespace kvr::netlistdb::tool
