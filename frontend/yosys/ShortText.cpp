#include "ShortText.h"

#include <algorithm>
#include <cstring>
#include <simdjson.h>
#include <string>
#include <string_view>
#include <utility>

namespace kvr::netlistdb::yosys {

namespace {

constexpr std::size_t BLOCK_SIZE = std::size_t{256} * 1024;
/// Of a line that opens a section: so many bytes of each block are read once more with the next.
constexpr std::size_t MOST_INDENT = 64;
constexpr std::size_t NOWHERE = std::string_view::npos;

/// Sixteen bytes of a text, in a vector register where there is one.
class SixteenBytes {
  public:
    static constexpr std::size_t SIZE = 16;

    explicit SixteenBytes(const char *text) { std::memcpy(&m_bytes, text, SIZE); }
    /// True when some byte is @p c, and that of @p other at its place @p otherC.
    bool haveBoth(char c, const SixteenBytes &other, char otherC) const
    {
        const auto places =
            (m_bytes == static_cast<signed char>(c)) & (other.m_bytes == static_cast<signed char>(otherC));
        std::uint64_t halves[2];
        std::memcpy(halves, &places, SIZE);
        return (halves[0] | halves[1]) != 0;
    }

  private:
    signed char m_bytes __attribute__((vector_size(16)));
};

/// The line break before the first line that is @p indent and a closing brace behind it. The line with which @p text
/// begins does not count. Lines are short: a look at each of them takes longer than this.
std::size_t findClosing(std::string_view text, std::string_view indent)
{
    const std::size_t distance = indent.size() + 1;
    const std::size_t places = text.size() > distance ? text.size() - distance : 0;
    for (std::size_t at = 0; at < places; at += SixteenBytes::SIZE) {
        const std::size_t end = std::min(at + SixteenBytes::SIZE, places);
        if (end - at == SixteenBytes::SIZE &&
            !SixteenBytes(text.data() + at).haveBoth('\n', SixteenBytes(text.data() + at + distance), '}')) {
            continue;
        }
        for (std::size_t place = at; place < end; ++place) {
            if (text[place] == '\n' && text[place + distance] == '}' &&
                text.compare(place + 1, indent.size(), indent) == 0) {
                return place;
            }
        }
    }
    return NOWHERE;
}

std::string_view indentOf(std::string_view line)
{
    return line.substr(0, line.find_first_not_of(" \t"));
}

/// True for a line that opens an object which may be long.
bool opensSection(std::string_view line)
{
    const std::string_view indent = indentOf(line);
    const std::string_view text = line.substr(indent.size());
    return indent.size() <= MOST_INDENT &&
           (text == "\"cells\": {" || text == "\"netnames\": {" || text == "\"memories\": {");
}

} // namespace

/// Goes through the file once.
class ShortText::Scan {
  public:
    Scan(ShortText &text, const Sizes &sizes) : m_text(text), m_sizes(sizes), m_block(new char[BLOCK_SIZE]) {}

    /// Returns false when a section has no end.
    bool run()
    {
        while (m_at < m_text.m_file.size()) {
            std::string indent;
            if (copyToSection(indent) && !passSection(indent)) {
                return false;
            }
        }
        return true;
    }

  private:
    /// The bytes of the file from m_at on, half a block at least unless the file ends before.
    std::string_view load()
    {
        const std::uint64_t left = m_text.m_file.size() - m_at;
        std::uint64_t passed = m_at - m_blockBegin;
        if (passed >= m_blockSize || m_blockSize - passed < std::min<std::uint64_t>(left, BLOCK_SIZE / 2)) {
            m_blockBegin = m_at;
            m_blockSize = static_cast<std::size_t>(std::min<std::uint64_t>(left, BLOCK_SIZE));
            m_text.m_file.read(m_blockBegin, m_blockSize, m_block.get());
            passed = 0;
        }
        return std::string_view(m_block.get(), m_blockSize).substr(static_cast<std::size_t>(passed));
    }

    void append(std::string_view text)
    {
        std::memcpy(m_text.m_data.get() + m_text.m_size, text.data(), text.size());
        m_text.m_size += text.size();
    }

    /// Copies lines up to the first that opens a section, without its line break; its indentation goes to @p indent.
    /// Returns false when the block ended before.
    bool copyToSection(std::string &indent)
    {
        const std::string_view block = load();
        std::size_t at = 0;
        for (std::size_t end = block.find('\n'); end != NOWHERE; end = block.find('\n', at)) {
            const std::string_view line = block.substr(at, end - at);
            at = end + 1;
            const bool isOpening = m_isLineStart && opensSection(line);
            m_isLineStart = true;
            if (isOpening) {
                append(block.substr(0, end));
                m_at += end;
                indent = indentOf(line);
                return true;
            }
        }
        // What is left of the block is read once more, with the rest of its line, unless the line fills the block.
        if (at == 0 || m_at + block.size() == m_text.m_file.size()) {
            at = block.size();
            m_isLineStart = false;
        }
        append(block.substr(0, at));
        m_at += at;
        return false;
    }

    /// Goes on from the break of a section's opening line, which has just been copied, to its end, or to the break
    /// before its closing line when that is still to be copied. Returns false when it has no end.
    bool passSection(const std::string &indent)
    {
        Section section;
        section.isInFile = true;
        section.begin = m_at - 1;
        const std::size_t place = m_text.m_size - 1;
        bool isLong = false;
        std::string border;
        for (bool isOpen = true; isOpen;) {
            const std::string_view block = load();
            if (border.empty()) {
                const std::string_view between = block.substr(0, 1 + indentOf(block.substr(1)).size());
                border.append(between).append("},").append(between).append("\"");
            }
            const std::size_t closing = findClosing(block, indent);
            isOpen = closing == NOWHERE;
            if (isOpen && m_at + block.size() == m_text.m_file.size()) {
                return false;
            }
            const std::string_view fields = block.substr(0, isOpen ? block.size() - indent.size() - 1 : closing);
            addBorders(section, m_at, fields, border);
            m_at += fields.size();
            isLong = isLong || m_at - section.begin >= m_sizes.section;
            if (!isLong) {
                append(fields);
            }
        }
        m_isLineStart = false;
        if (isLong) {
            section.end = m_at + 1 + indent.size() + 1;
            m_at = section.end;
            m_text.m_size = place + 1;
            append("}");
            m_text.m_sections.emplace(place, std::move(section));
        }
        return true;
    }

    /// Adds the borders in @p text, which is at @p place of the file.
    void addBorders(Section &section, std::uint64_t place, std::string_view text, const std::string &border) const
    {
        for (;;) {
            const std::uint64_t latest = section.borders.empty() ? section.begin : section.borders.back();
            const std::uint64_t due = latest + m_sizes.window;
            const std::size_t from = due > place ? static_cast<std::size_t>(due - place) : 0;
            const std::size_t found = from < text.size() ? text.find(border, from) : NOWHERE;
            if (found == NOWHERE) {
                return;
            }
            section.borders.push_back(place + found + border.find(','));
        }
    }

    ShortText &m_text;
    const Sizes &m_sizes;
    std::unique_ptr<char[]> m_block;
    std::uint64_t m_blockBegin = 0; ///< in the file
    std::size_t m_blockSize = 0;
    std::uint64_t m_at = 0; ///< in the file
    bool m_isLineStart = true;
};

ShortText::ShortText(const JsonFile &file, const Sizes &sizes)
    : m_file(file), m_capacity(static_cast<std::size_t>(file.size()) + simdjson::SIMDJSON_PADDING),
      m_data(new char[m_capacity])
{
    if (sizes.section == WHOLE.section || !Scan(*this, sizes).run()) {
        m_sections.clear();
        m_size = static_cast<std::size_t>(file.size());
        file.read(0, m_size, m_data.get());
    }
    std::memset(m_data.get() + m_size, 0, simdjson::SIMDJSON_PADDING);
}

JsonInput ShortText::input() const
{
    JsonInput input;
    input.data = m_data.get();
    input.size = m_size;
    input.capacity = m_capacity;
    input.shortened = m_sections.empty() ? nullptr : this;
    return input;
}

} // namespace kvr::netlistdb::yosys
