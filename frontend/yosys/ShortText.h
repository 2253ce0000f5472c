#pragma once

#include "JsonFile.h"
#include "JsonInput.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <vector>

namespace kvr::netlistdb::yosys {

/// An object of a document whose fields are read later.
struct Section {
    bool isInFile = false; ///< all places are those of the file, otherwise those of the text in memory
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::vector<std::uint64_t> borders; ///< commas between fields that end a window

    /// Bytes of the object that are not in the text in memory.
    std::size_t sizeInFile() const { return isInFile ? static_cast<std::size_t>(end - begin) : 0; }
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
    /// The sections that stayed in the file, by the place in the text of the empty object that stands for each.
    const std::map<std::size_t, Section> &sections() const { return m_sections; }
    JsonInput input() const;

  private:
    class Scan;

    const JsonFile &m_file;
    std::size_t m_capacity;
    std::unique_ptr<char[]> m_data; ///< pages behind the text are not touched
    std::size_t m_size = 0;
    std::map<std::size_t, Section> m_sections;
};

} // namespace kvr::netlistdb::yosys
