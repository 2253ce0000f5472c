#pragma once

#include "JsonInput.h"
#include "ReadFault.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace kvr::netlistdb::yosys {

/// The text of a file, without the blanks that its lines begin with: a third of what yosys writes. No line break can be
/// inside a text of JSON, so they mean nothing.
class FileText {
  public:
    /// Reads the regular file @p path of @p size bytes.
    FileText(const std::string &path, std::uint64_t size, const ReadFault &fault);

    JsonInput input() const { return {m_data.get(), m_size, m_capacity}; }
    /// The blanks that line @p number, counted from 1, begins with in the file; 0 when that cannot be read any more.
    /// Reads the file up to there.
    std::size_t blanksOf(std::size_t number) const;

  private:
    void addBlock(const char *begin, const char *end);

    std::string m_path;
    std::size_t m_capacity;
    std::unique_ptr<char[]> m_data; ///< pages behind the text are not touched
    std::size_t m_size = 0;
    bool m_isLineStart = false; ///< blanks that come now are dropped
};

} // namespace kvr::netlistdb::yosys
