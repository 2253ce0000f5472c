#pragma once

#include <array>
#include <cstddef>
#include <locale>
#include <string>
#include <string_view>

namespace kvr::netlistdb {

/// Lower case, byte by byte.
class CaseFold {
  public:
    /// The C library's `tolower`.
    CaseFold() = default;
    /// What a case-insensitive regular expression of this locale takes for equal. The locale must outlive this object.
    explicit CaseFold(const std::locale &locale) : m_facet(&std::use_facet<std::ctype<char>>(locale)) {}

    /// Writes the folded @p text over @p result, which must not be where @p text is.
    void fold(std::string_view text, std::string &result);

  private:
    void makeTable();

    const std::ctype<char> *m_facet = nullptr;
    std::size_t m_bytesFolded = 0;
    bool m_hasTable = false;
    std::array<char, 256> m_table; ///< made when the bytes folded one by one are as many
};

} // namespace kvr::netlistdb
