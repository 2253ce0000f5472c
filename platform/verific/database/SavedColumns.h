#pragma once

#include "saved_netlist.capnp.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Verific {

class AttTable;
class DesignObj;
class ParamTable;

/// The columns of a saved netlist while they are gathered. Texts added must stay alive until the end.
namespace saved {

using Row = std::uint32_t;

/// Texts in sequence; null texts stay null.
class TextColumn {
  public:
    void add(const char *text);
    void store(Texts::Builder to) const;
    std::uint64_t size() const { return m_size; }

  private:
    struct Chunk {
        std::string bytes;
        std::vector<std::uint32_t> lengths;
    };
    std::vector<Chunk> m_chunks;
    std::uint64_t m_size = 0;
};

/// A column that is left out when every row has the default 0.
template <typename Value> class SparseColumn {
  public:
    void set(std::uint64_t row, Value value)
    {
        if (value != 0) {
            m_values.resize(row + 1);
            m_values[row] = value;
        }
    }
    /// The values of @p rows rows, or of none.
    const std::vector<Value> &finish(std::uint64_t rows)
    {
        if (!m_values.empty()) {
            m_values.resize(rows);
        }
        return m_values;
    }

  private:
    std::vector<Value> m_values;
};

/// Distinct texts and what is made of them: source files, attribute sets and parameter sets.
class SharedColumns {
  public:
    /// Number of the set plus 1; 0 for no attributes.
    Row attributes(const AttTable *table);
    Row parameters(const ParamTable *table);
    /// Number of the file of @p handle plus 1; 0 when the handle has no file.
    Row file(std::uint64_t handle);
    void store(SavedNetlist::Builder to) const;

  private:
    struct Sets {
        Row add(const std::u32string &pairs);
        void store(PairSets::Builder to) const;

        std::unordered_map<std::u32string, Row> numbers;
        std::vector<std::uint32_t> counts;
        std::vector<std::uint32_t> keys;
        std::vector<std::uint32_t> values;
    };

    Row text(const char *text);
    /// Number of the text plus 1; 0 for null.
    Row textOrNone(const char *text) { return text != nullptr ? this->text(text) + 1 : 0; }

    TextColumn m_texts;
    std::unordered_map<std::string_view, Row> m_textNumbers;
    std::vector<std::uint32_t> m_fileNames;
    std::vector<std::uint32_t> m_filePaths;
    std::unordered_map<const char *, Row> m_fileNumbers; ///< by the address of the name in the table of files
    std::unordered_map<const void *, Row> m_shared;      ///< sets of tables that several objects share
    Sets m_attributes;
    Sets m_parameters;
};

/// What all named objects have in common.
class ObjectColumns {
  public:
    /// Adds the next row.
    void add(const char *name, std::uint64_t linefile, Row attributes, std::uint8_t flags, SharedColumns &shared);
    std::uint64_t size() const { return m_names.size(); }
    void store(Objects::Builder to);

  private:
    TextColumn m_names;
    SparseColumn<std::uint32_t> m_files;
    SparseColumn<std::uint32_t> m_lines;
    SparseColumn<std::uint32_t> m_attributes;
    SparseColumn<std::uint8_t> m_flags;
};

struct BusColumns {
    void store(Buses::Builder to);

    ObjectColumns objects;
    std::vector<std::int32_t> left;
    std::vector<std::int32_t> right;
    std::vector<std::uint8_t> directions;
    std::vector<std::uint32_t> sizes;
    std::vector<std::uint32_t> elements;
};

/// Number of elements that one list may have. Throws std::length_error when @p size is more.
unsigned checkedSize(std::uint64_t size);

/// Fills a list that @p init(size) makes.
template <typename Value, typename Init> void storeList(const std::vector<Value> &values, Init init)
{
    auto list = init(checkedSize(values.size()));
    for (unsigned at = 0; at < list.size(); ++at) {
        list.set(at, values[at]);
    }
}

} // namespace saved
} // namespace Verific
