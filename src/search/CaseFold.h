#pragma once

#include <array>
#include <locale>
#include <string>
#include <string_view>

namespace kvr::netlistdb {

/// Lower case, byte by byte, as a table: whom it asks is asked once per byte value.
class CaseFold {
  public:
    /// The C library's `tolower`.
    static CaseFold ofCLibrary();
    /// What a case-insensitive regular expression of this locale takes for equal.
    static CaseFold ofLocale(const std::locale &locale);

    /// Writes the folded @p text over @p result.
    void fold(std::string_view text, std::string &result) const;

  private:
    CaseFold() = default;

    std::array<char, 256> m_lower;
};

} // namespace kvr::netlistdb
