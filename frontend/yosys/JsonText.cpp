#include "JsonText.h"

#include "memory/Sanitizers.h"

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

std::string_view TextBuffer::copy(std::string_view text)
{
    char *const place = keep(text.size() + simdjson::SIMDJSON_PADDING);
    trim(std::copy(text.begin(), text.end(), place));
    return {place, text.size()};
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

JsonText::JsonText(const JsonInput &input, ReadFault &fault) : m_input(input), m_fault(fault)
{
    // Escapes are read with it, whether or not a document is open.
    const simdjson::error_code error = m_part.allocate(simdjson::SIMDJSON_PADDING);
    if (error != simdjson::SUCCESS) {
        throw std::bad_alloc();
    }
}

json::document &JsonText::open()
{
    return iterate(m_input.data, m_input.size, m_input.capacity);
}

void JsonText::close()
{
    m_document.reset();
    m_parser = json::parser();
}

void JsonText::finish() const
{
    if (m_input.shortened != nullptr &&
        (m_longSections != m_input.shortened->sections().size() || !m_input.shortened->file().isUnchanged())) {
        m_fault.fail("the file is indented in another way than it seems, or was written to");
    }
}

Section JsonText::section(json::value &value, const char *what)
{
    const char *const begin = value.raw_json_token().data();
    const auto place = static_cast<std::size_t>(begin - m_input.data);
    json::object fields = object(value, what);
    if (m_input.shortened != nullptr) {
        const auto found = m_input.shortened->sections().find(place);
        if (found != m_input.shortened->sections().end()) {
            ++m_longSections;
            return found->second;
        }
    }
    Section section;
    section.begin = place;
    const char *windowBegin = begin;
    bool isFirst = true;
    eachField(fields, [&](std::string_view raw, json::value &) {
        if (!isFirst && static_cast<std::size_t>(raw.data() - windowBegin) > m_input.window) {
            // Between the quote of the key and the comma before it is only white space.
            const char *border = raw.data() - 2;
            while (*border != ',') {
                --border;
            }
            section.borders.push_back(static_cast<std::uint64_t>(border - m_input.data));
            windowBegin = border;
        }
        isFirst = false;
    });
    section.end = section.begin + objectFrom(begin).size();
    return section;
}

std::string_view JsonText::objectFrom(const char *begin)
{
    const char *next = nullptr;
    if (m_document->current_location().get(next) != simdjson::SUCCESS) {
        next = m_end;
    }
    return withoutTrailingSpace({begin, static_cast<std::size_t>(next - begin)});
}

JsonText::Window::Window(JsonText &text, const Section &section, std::size_t number)
{
    const bool isFirst = number == 0;
    const bool isLast = number == section.borders.size();
    const std::uint64_t begin = isFirst ? section.begin : section.borders[number - 1];
    const std::uint64_t end = isLast ? section.end : section.borders[number] + 1;
    const auto size = static_cast<std::size_t>(end - begin);
    // The text belongs to the caller, who lets it be written to.
    char *const at = section.isInFile ? text.load(begin, end) : text.m_input.data + begin;
    text.m_windowBegin = at;
    text.m_windowPlace = begin;
    if (!isFirst) {
        *at = '{';
    }
    if (!isLast) {
        at[size - 1] = '}';
    }
    if (!section.isInFile) {
        m_before = isFirst ? nullptr : at;
        m_after = isLast ? nullptr : at + size - 1;
    }
    try {
        text.iterate(at, size, section.isInFile ? size + simdjson::SIMDJSON_PADDING : text.m_input.capacity - begin);
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

std::string JsonText::place()
{
    const std::string_view text(m_input.data, m_input.size);
    const char *at = nullptr;
    if (!m_document || m_document->current_location().get(at) != simdjson::SUCCESS || at < text.data() ||
        at > text.data() + text.size()) {
        return " at its end";
    }
    const std::string_view before = text.substr(0, static_cast<std::size_t>(at - text.data()));
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineStart = before.rfind('\n') + 1; // npos + 1 is 0
    return " at line " + std::to_string(line) + ", column " + std::to_string(before.size() - lineStart + 1);
}

json::document &JsonText::iterate(const char *begin, std::size_t size, std::size_t capacity)
{
    m_document.reset();
    json::document document;
    check(m_parser.iterate(simdjson::padded_string_view(begin, size, capacity)).get(document));
    m_end = begin + size;
    return m_document.emplace(std::move(document));
}

char *JsonText::load(std::uint64_t begin, std::uint64_t end)
{
    m_fault.leaveItem(); // its name is in the window before
    const auto size = static_cast<std::size_t>(end - begin);
    if constexpr (memory::IS_SANITIZED) {
        m_loaded = TextBuffer(); // so that texts of other windows are at other places
    }
    char *const text = m_loaded.reuse(size + simdjson::SIMDJSON_PADDING);
    m_input.shortened->file().read(begin, size, text);
    std::fill_n(text + size, simdjson::SIMDJSON_PADDING, '\0');
    return text;
}

void JsonText::requireEnd()
{
    const char *rest = nullptr;
    if (m_document->current_location().get(rest) == simdjson::SUCCESS) {
        check(simdjson::TRAILING_CONTENT);
    }
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

std::string_view JsonText::attributeValue(json::value &value, const char *what)
{
    return attributeValueBy(value, what, [this](std::string_view raw) { return text(raw); });
}

std::string_view JsonText::attributeValue(json::value &value, TextBuffer &scratch, const char *what) const
{
    return attributeValueBy(value, what, [&](std::string_view raw) { return text(raw, scratch); });
}

template <typename Unescaped>
std::string_view JsonText::attributeValueBy(json::value &value, const char *what, Unescaped &&unescaped) const
{
    json::json_type type;
    check(value.type().get(type));
    if (type == json::json_type::string) {
        return withoutMarkingBlank(unescaped(rawString(value, what)));
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
