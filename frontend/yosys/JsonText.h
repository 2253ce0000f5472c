#pragma once

#include "JsonInput.h"
#include "ReadFault.h"
#include "ShortText.h"

#include <simdjson.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kvr::netlistdb::yosys {

namespace json = simdjson::ondemand;

/// Throws simdjson::simdjson_error when @p code is an error.
inline void check(simdjson::error_code code)
{
    if (code != simdjson::SUCCESS) {
        throw simdjson::simdjson_error(code);
    }
}

/// The key of a field as written between its quotes. @p value is the field's value, not yet touched.
inline std::string_view rawKey(const json::field &field, json::value &value)
{
    const char *begin = field.key().raw();
    // The parser offers no end of a key. Between its closing quote and the value are only a colon and white space.
    const char *end = value.raw_json_token().data() - 1;
    while (*end != '"') {
        --end;
    }
    return {begin, static_cast<std::size_t>(end - begin)};
}

/// Calls @p visit(rawKey, value) for every field of @p object, in order.
template <typename Visit> void eachField(json::object &object, Visit &&visit)
{
    for (auto result : object) {
        json::field field;
        check(std::move(result).get(field));
        json::value value = field.value();
        visit(rawKey(field, value), value);
    }
}

/// Calls @p visit(value) for every element of @p array, in order.
template <typename Visit> void eachElement(json::array &array, Visit &&visit)
{
    for (auto result : array) {
        json::value value;
        check(std::move(result).get(value));
        visit(value);
    }
}

/// A buffer that texts are copied to, one after the other or over each other.
class TextBuffer {
  public:
    /// Room for @p size bytes that stay in place for the life of the buffer.
    char *keep(std::size_t size);
    /// A copy of @p text that stays in place for the life of the buffer, with the bytes behind it that the parser
    /// needs.
    std::string_view copy(std::string_view text);
    /// Gives back what the latest keep() handed out from @p end on.
    void trim(const char *end);
    /// Room for @p size bytes until the next call.
    char *reuse(std::size_t size);

  private:
    std::vector<std::unique_ptr<char[]>> m_blocks;
    std::size_t m_room = 0;
    char *m_at = nullptr;
    std::unique_ptr<char[]> m_reused;
    std::size_t m_reusedSize = 0;
};

/// Typed access to the values of one JSON document, with errors that say what was expected.
///
/// The parser needs an index of the text that is half as large. That of the whole document is held until close();
/// sections are indexed window by window after that. Those of a file that are not in its ShortText are read into memory
/// at the same time.
class JsonText {
  public:
    /// Both must outlive the object.
    JsonText(const JsonInput &input, ReadFault &fault);

    /// Opens the whole document.
    json::document &open();
    /// Ends the reading of the whole document; what was read of it, other than sections and texts, ends with it.
    void close();
    /// Call when all is read.
    /// @throws ReadError  when the empty objects of a ShortText did not stand for what was read of its file
    void finish() const;

    /// The section that is the object @p value of the whole document.
    Section section(json::value &value, const char *what);
    /// Calls @p visit(rawKey, value) for every field of @p section, in order, once the whole document is closed. The
    /// texts of a section live until the next field is visited.
    template <typename Visit> void eachFieldOf(const Section &section, Visit &&visit)
    {
        for (std::size_t number = 0; number <= section.borders.size(); ++number) {
            const Window window(*this, section, number);
            json::object object;
            check(m_document->get_object().get(object));
            eachField(object, visit);
            requireEnd();
        }
    }
    /// The place of @p at, which is in the window that is being read, among the bytes of its section's text.
    std::uint64_t placeOf(const char *at) const
    {
        return m_windowPlace + static_cast<std::uint64_t>(at - m_windowBegin);
    }

    /// The text of the object that has just been read to its end; it began at @p begin.
    std::string_view objectFrom(const char *begin);
    /// Reads the fields of @p text, a copy() of what objectFrom() returned.
    template <typename Read> void readObject(std::string_view text, Read &&read)
    {
        json::object object;
        const simdjson::padded_string_view padded(text.data(), text.size(), text.size() + simdjson::SIMDJSON_PADDING);
        check(m_part.iterate(padded).get(m_partDocument));
        check(m_partDocument.get_object().get(object));
        read(object);
    }

    /// Throws when something follows the object that was read.
    void requireEnd();
    /// Where in the text the parser is: " at line 3, column 14".
    std::string place();

    /// @p value as an object, array, or text between its quotes; @p what names it in the error.
    json::object object(json::value &value, const char *what) const;
    json::array array(json::value &value, const char *what) const;
    std::string_view rawString(json::value &value, const char *what) const;
    /// @p value as a whole number of 32 bits, or as the numbers 0 and 1, also written as false and true.
    int integer(json::value &value, const char *what) const;
    bool flag(json::value &value, const char *what) const;

    /// @p raw, a text between its quotes, without escapes. Lives as long as what it was read from, the whole document
    /// or a field of a section.
    std::string_view text(std::string_view raw)
    {
        if (isPlain(raw)) {
            return raw;
        }
        const std::string_view kept = unescape(raw, m_buffer.keep(raw.size() + simdjson::SIMDJSON_PADDING));
        m_buffer.trim(kept.data() + kept.size());
        return kept;
    }
    /// The same; lives until @p scratch is used again.
    std::string_view text(std::string_view raw, TextBuffer &scratch) const
    {
        return isPlain(raw) ? raw : unescape(raw, scratch.reuse(raw.size() + simdjson::SIMDJSON_PADDING));
    }

    /// A copy of @p text that lives as long as this object.
    std::string_view keep(std::string_view text) { return m_buffer.copy(text); }

    /// The value of an attribute or a parameter as text: texts as written, without the blank that yosys puts behind
    /// texts that look like bits; numbers as they are written.
    std::string_view attributeValue(json::value &value, const char *what);
    /// The same; lives until @p scratch is used again.
    std::string_view attributeValue(json::value &value, TextBuffer &scratch, const char *what) const;

    /// Reads over @p value, of which nothing is wanted but that it is well formed.
    void passOver(json::value &value, unsigned depth = 0);

  private:
    /// Opens the window of a section with this number. Its borders are braces meanwhile; those in the file are left as
    /// they are.
    class Window {
      public:
        Window(JsonText &text, const Section &section, std::size_t number);
        ~Window();
        Window(const Window &) = delete;
        Window &operator=(const Window &) = delete;

      private:
        void restore();

        char *m_before = nullptr;
        char *m_after = nullptr;
    };

    json::document &iterate(const char *begin, std::size_t size, std::size_t capacity);
    /// The text in memory from @p begin to @p end of the file.
    char *load(std::uint64_t begin, std::uint64_t end);
    static bool isPlain(std::string_view raw) { return raw.find('\\') == std::string_view::npos; }
    std::string_view unescape(std::string_view raw, char *to) const;
    /// The value of an attribute; @p unescaped(raw) is the text of one.
    template <typename Unescaped>
    std::string_view attributeValueBy(json::value &value, const char *what, Unescaped &&unescaped) const;
    [[noreturn]] void wrongType(const char *what, const char *expected) const;

    const JsonInput &m_input;
    ReadFault &m_fault;
    json::parser m_parser;
    std::optional<json::document> m_document; ///< none when nothing is open
    const char *m_end = nullptr;              ///< of what is open
    TextBuffer m_loaded;                      ///< the latest window that came from the file
    const char *m_windowBegin = nullptr;
    std::uint64_t m_windowPlace = 0; ///< of m_windowBegin
    std::size_t m_longSections = 0;  ///< of the ShortText: those that were met
    json::parser m_part;             ///< of objects that are read once more
    json::document m_partDocument;
    TextBuffer m_buffer;
    TextBuffer m_passed;
};

} // namespace kvr::netlistdb::yosys
