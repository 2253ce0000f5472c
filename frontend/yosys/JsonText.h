#pragma once

#include "ReadFault.h"

#include <simdjson.h>

#include <cstddef>
#include <memory>
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

/// A buffer that texts without their escapes are written to, one after the other or over each other.
class TextBuffer {
  public:
    /// Room for @p size bytes that stay in place for the life of the buffer.
    char *keep(std::size_t size);
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
class JsonText {
  public:
    /// Both must outlive the object.
    JsonText(const json::parser &parser, const ReadFault &fault) : m_parser(parser), m_fault(fault) {}

    /// @p value as an object, array, or text between its quotes; @p what names it in the error.
    json::object object(json::value &value, const char *what) const;
    json::array array(json::value &value, const char *what) const;
    std::string_view rawString(json::value &value, const char *what) const;
    /// @p value as a whole number of 32 bits, or as the numbers 0 and 1, also written as false and true.
    int integer(json::value &value, const char *what) const;
    bool flag(json::value &value, const char *what) const;

    /// @p raw, a text between its quotes, without escapes. Lives as long as the document and this object.
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

    /// The value of an attribute or a parameter as text: texts as written, without the blank that yosys puts behind
    /// texts that look like bits; numbers as they are written.
    std::string_view attributeValue(json::value &value, TextBuffer &scratch, const char *what) const;

    /// Reads over @p value, of which nothing is wanted but that it is well formed.
    void passOver(json::value &value, unsigned depth = 0);

  private:
    static bool isPlain(std::string_view raw) { return raw.find('\\') == std::string_view::npos; }
    std::string_view unescape(std::string_view raw, char *to) const;
    [[noreturn]] void wrongType(const char *what, const char *expected) const;

    const json::parser &m_parser;
    const ReadFault &m_fault;
    TextBuffer m_buffer;
    TextBuffer m_passed;
};

} // namespace kvr::netlistdb::yosys
