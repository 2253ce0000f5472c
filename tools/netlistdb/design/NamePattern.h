#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace re2 {
class RE2;
}

namespace kvr::netlistdb::tool {

/// What full names are matched against. Takes time in proportion to the name, whatever the pattern.
class NamePattern {
  public:
    enum class Kind {
        Plain, ///< lies anywhere in the name
        Regex, ///< is found anywhere in the name
        Glob,  ///< matches the whole name
    };

    /// @throws Failure for a bad regular expression, saying what is wrong with it.
    NamePattern(Kind kind, const std::string &text, bool ignoreCase);
    ~NamePattern();
    NamePattern(const NamePattern &) = delete;
    NamePattern &operator=(const NamePattern &) = delete;

    bool matches(std::string_view fullName) const;
    /// The pattern as it was given.
    const std::string &text() const { return m_text; }

  private:
    std::string m_text;
    bool m_isWhole;
    std::unique_ptr<const re2::RE2> m_characters; ///< for names in UTF-8; null when the pattern itself is not
    std::unique_ptr<const re2::RE2> m_bytes;      ///< for other names; null for plain text
};

/// The regular expression that matches what the wildcard @p glob does: `*` and `?` within one level of the hierarchy,
/// `**` across levels, everything else itself (after a backslash the wildcards, too).
std::string regexOfGlob(const std::string &glob);

} // namespace kvr::netlistdb::tool
