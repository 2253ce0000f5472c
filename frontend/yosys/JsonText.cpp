#include "JsonText.h"

#include <algorithm>
#include <limits>
#include <new>
#include <string>
#include <utility>

namespace kvr::netlistdb::yosys {

namespace {

/// Parts of the file that the reader does not use may be nested this deep; a bound keeps the stack safe.
constexpr unsigned MOST_DEPTH = 256;
constexpr std::size_t BLOCK_SIZE = std::size_t{64} * 1024;

/// Yosys puts one blank behind a text that would otherwise read as bits: [01xz]* followed by blanks.
std::string_view withoutMarkingBlank(std::string_view text)
{
    if (text.empty() || text.back() != ' ') {
        return text;
    }
    const std::size_t bits = std::min(text.find_first_not_of("01xz"), text.size());
    return text.find_first_not_of(' ', bits) == std::string_view::npos ? text.substr(0, text.size() - 1) : text;
}

std::string_view withoutTrailingSpace(std::string_view token)
{
    const std::size_t last = token.find_last_not_of(" \t\r\n");
    return token.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

} // namespace

char *TextBuffer::keep(std::size_t size)
{
    if (size > m_room) {
        const std::size_t room = std::max(size, BLOCK_SIZE);
        m_blocks.push_back(std::make_unique<char[]>(room));
        m_at = m_blocks.back().get();
        m_room = room;
    }
    char *place = m_at;
    m_at += size;
    m_room -= size;
    return place;
}

void TextBuffer::trim(const char *end)
{
    m_room += static_cast<std::size_t>(m_at - end);
    m_at -= m_at - end;
}

char *TextBuffer::reuse(std::size_t size)
{
    if (size > m_reusedSize) {
        m_reused = std::make_unique<char[]>(size * 2);
        m_reusedSize = size * 2;
    }
    return m_reused.get();
}

JsonText::JsonText(const JsonInput &input, const ReadFault &fault) : m_input(input), m_fault(fault)
{
    // Escapes are read with it, whether or not a document is open.
    const simdjson::error_code error = m_part.allocate(simdjson::SIMDJSON_PADDING);
    if (error != simdjson::SUCCESS) {
        throw std::bad_alloc();
    }
}

json::document &JsonText::open()
{
    return iterate(m_input.data, m_input.size);
}

void JsonText::close()
{
    m_document.reset();
    m_parser = json::parser();
}

Section JsonText::section(json::value &value, const char *what)
{
    Section section;
    // The text belongs to the caller, who lets it be written to.
    section.m_begin = m_input.data + (value.raw_json_token().data() - m_input.data);
    json::object fields = object(value, what);
    const char *windowBegin = section.m_begin;
    bool isFirst = true;
    eachField(fields, [&](std::string_view raw, json::value &) {
        if (!isFirst && static_cast<std::size_t>(raw.data() - windowBegin) > m_input.window) {
            // Between the quote of the key and the comma before it is only white space.
            char *border = m_input.data + (raw.data() - m_input.data) - 2;
            while (*border != ',') {
                --border;
            }
            section.m_borders.push_back(border);
            windowBegin = border;
        }
        isFirst = false;
    });
    const std::string_view text = objectFrom(section.m_begin);
    section.m_end = section.m_begin + text.size();
    return section;
}

std::string_view JsonText::objectFrom(const char *begin)
{
    const char *next = nullptr;
    if (m_document->current_location().get(next) != simdjson::SUCCESS) {
        next = m_input.data + m_input.size;
    }
    return withoutTrailingSpace({begin, static_cast<std::size_t>(next - begin)});
}

JsonText::Window::Window(JsonText &text, const Section &section, std::size_t number)
    : m_before(number == 0 ? nullptr : section.m_borders[number - 1]),
      m_after(number == section.m_borders.size() ? nullptr : section.m_borders[number])
{
    char *const begin = m_before != nullptr ? m_before : section.m_begin;
    const char *const end = m_after != nullptr ? m_after + 1 : section.m_end;
    if (m_before != nullptr) {
        *m_before = '{';
    }
    if (m_after != nullptr) {
        *m_after = '}';
    }
    try {
        text.iterate(begin, static_cast<std::size_t>(end - begin));
    } catch (const simdjson::simdjson_error &) {
        restore();
        throw;
    }
}

JsonText::Window::~Window()
{
    restore();
}

void JsonText::Window::restore()
{
    for (char *const border : {m_before, m_after}) {
        if (border != nullptr) {
            *border = ',';
        }
    }
}

std::string JsonText::place(const std::function<std::size_t(std::size_t line)> &missing)
{
    const std::string_view text(m_input.data, m_input.size);
    const char *at = nullptr;
    if (!m_document || m_document->current_location().get(at) != simdjson::SUCCESS || at < text.data() ||
        at > text.data() + text.size()) {
        return " at its end";
    }
    const std::string_view before = text.substr(0, static_cast<std::size_t>(at - text.data()));
    const auto line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
    const std::size_t lineStart = before.rfind('\n') + 1; // npos + 1 is 0
    const std::size_t column = before.size() - lineStart + 1 + (missing ? missing(line) : 0);
    return " at line " + std::to_string(line) + ", column " + std::to_string(column);
}

json::document &JsonText::iterate(const char *begin, std::size_t size)
{
    m_document.reset();
    json::document document;
    check(m_parser.iterate(padded(begin, size)).get(document));
    return m_document.emplace(std::move(document));
}

simdjson::padded_string_view JsonText::padded(const char *begin, std::size_t size) const
{
    const std::size_t capacity = m_input.capacity - static_cast<std::size_t>(begin - m_input.data);
    return simdjson::padded_string_view(begin, size, capacity);
}

json::object JsonText::object(json::value &value, const char *what) const
{
    json::json_type type;
    check(value.type().get(type));
    if (type != json::json_type::object) {
        wrongType(what, "an object");
    }
    json::object object;
    check(value.get_object().get(object));
    return object;
}

json::array JsonText::array(json::value &value, const char *what) const
{
    json::json_type type;
    check(value.type().get(type));
    if (type != json::json_type::array) {
        wrongType(what, "an array");
    }
    json::array array;
    check(value.get_array().get(array));
    return array;
}

std::string_view JsonText::rawString(json::value &value, const char *what) const
{
    json::json_type type;
    check(value.type().get(type));
    if (type != json::json_type::string) {
        wrongType(what, "a text");
    }
    const std::string_view token = withoutTrailingSpace(value.raw_json_token());
    json::raw_json_string consumed;
    check(value.get_raw_json_string().get(consumed));
    return token.substr(1, token.size() - 2);
}

int JsonText::integer(json::value &value, const char *what) const
{
    json::json_type type;
    check(value.type().get(type));
    std::int64_t number = 0;
    if (type != json::json_type::number || value.get_int64().get(number) != simdjson::SUCCESS ||
        number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()) {
        wrongType(what, "a whole number of 32 bits");
    }
    return static_cast<int>(number);
}

bool JsonText::flag(json::value &value, const char *what) const
{
    json::json_type type;
    check(value.type().get(type));
    if (type == json::json_type::boolean) {
        bool on = false;
        check(value.get_bool().get(on));
        return on;
    }
    std::int64_t number = 0;
    if (type != json::json_type::number || value.get_int64().get(number) != simdjson::SUCCESS || number < 0 ||
        number > 1) {
        wrongType(what, "0 or 1");
    }
    return number != 0;
}

std::string_view JsonText::attributeValue(json::value &value, TextBuffer &scratch, const char *what) const
{
    json::json_type type;
    check(value.type().get(type));
    if (type == json::json_type::string) {
        return withoutMarkingBlank(text(rawString(value, what), scratch));
    }
    if (type != json::json_type::number) {
        wrongType(what, "a text or a number");
    }
    const std::string_view token = withoutTrailingSpace(value.raw_json_token());
    double checked = 0;
    check(value.get_double().get(checked));
    return token;
}

void JsonText::passOver(json::value &value, unsigned depth)
{
    if (depth > MOST_DEPTH) {
        m_fault.fail("the file is nested too deeply");
    }
    json::json_type type;
    check(value.type().get(type));
    switch (type) {
    case json::json_type::object: {
        json::object object;
        check(value.get_object().get(object));
        eachField(object, [&](std::string_view, json::value &field) { passOver(field, depth + 1); });
        break;
    }
    case json::json_type::array: {
        json::array array;
        check(value.get_array().get(array));
        eachElement(array, [&](json::value &element) { passOver(element, depth + 1); });
        break;
    }
    case json::json_type::string:
        text(rawString(value, ""), m_passed);
        break;
    case json::json_type::number: {
        double checked = 0;
        check(value.get_double().get(checked));
        break;
    }
    case json::json_type::boolean: {
        bool checked = false;
        check(value.get_bool().get(checked) != simdjson::SUCCESS ? simdjson::T_ATOM_ERROR : simdjson::SUCCESS);
        break;
    }
    case json::json_type::null: {
        const simdjson::simdjson_result<bool> isNull = value.is_null();
        check(isNull.error() != simdjson::SUCCESS || !isNull.value_unsafe() ? simdjson::N_ATOM_ERROR
                                                                            : simdjson::SUCCESS);
        break;
    }
    }
}

std::string_view JsonText::unescape(std::string_view raw, char *to) const
{
    auto *end = reinterpret_cast<std::uint8_t *>(to);
    std::string_view text;
    check(m_part.unescape(json::raw_json_string(reinterpret_cast<const std::uint8_t *>(raw.data())), end).get(text));
    // The netlist database takes NUL-terminated texts: everything behind a NUL would be lost.
    if (text.find('\0') != std::string_view::npos) {
        m_fault.fail("a text holds a NUL character");
    }
    return text;
}

void JsonText::wrongType(const char *what, const char *expected) const
{
    m_fault.fail(std::string(what) + " must be " + expected);
}

} // namespace kvr::netlistdb::yosys
