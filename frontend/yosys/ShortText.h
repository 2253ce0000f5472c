#pragma once

#include "JsonFile.h"
#include "JsonInput.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace kvr::netlistdb::yosys {

/// An object of a file that is no part of its ShortText.
struct LongSection {
    std::size_t place = 0;   ///< in the text: of the empty object that stands for it
    std::uint64_t begin = 0; ///< in the file
    std::uint64_t end = 0;
    std::vector<std::uint64_t> borders; ///< in the file: commas between its fields
};

/// The text of a file without the long lists of cells, memories and names of nets, which are read from the file when
/// their turn comes: most of a netlist is never in memory.
///
/// Where they begin and end, and where their fields do, is taken from the indentation of the lines. That is a guess: in
/// a text that is indented in another way an object may end elsewhere. It is right when the text is JSON, each of the
/// empty objects is such a list, and every piece between two borders is an object's fields, because a text of JSON can
/// be read in one way only. Who reads it checks that, and reads the whole text when it is not so.
class ShortText {
  public:
    /// Bytes from which on a section is long, and after which it gets a border.
    struct Sizes {
        std::size_t section = std::size_t{4} * 1024;
        std::size_t window = JsonInput().window;
    };
    /// No section is as long.
    static constexpr Sizes WHOLE{std::numeric_limits<std::size_t>::max(), 0};

    /// Reads @p file, which must outlive the object.
    /// @throws ReadError
    ShortText(const JsonFile &file, const Sizes &sizes);

    const JsonFile &file() const { return m_file; }
    /// In the order of the text.
    const std::vector<LongSection> &sections() const { return m_sections; }
    /// The one whose empty object is at @p place of the text; null when there is none.
    const LongSection *sectionAt(std::size_t place) const;
    JsonInput input() const;

  private:
    class Scan;

    const JsonFile &m_file;
    std::size_t m_capacity;
    std::unique_ptr<char[]> m_data; ///< pages behind the text are not touched
    std::size_t m_size = 0;
    std::vector<LongSection> m_sections;
};

} // namespace kvr::netlistdb::yosys
