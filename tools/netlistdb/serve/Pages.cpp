#include "serve/Pages.h"

#include "base/Failure.h"
#include "output/JsonRow.h"
#include "serve/Call.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <optional>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::size_t MOST_KEPT = 8;
/// Of an answer: what stands around the page.
constexpr std::size_t FRAME = 1024;

/// Bytes that @p json takes in an answer, which holds it twice: as it is, and as a text.
std::size_t costOf(const std::string &json)
{
    const auto isEscaped = [](char c) { return c == '"' || c == '\\'; };
    return 2 * json.size() + static_cast<std::size_t>(std::count_if(json.begin(), json.end(), isEscaped)) + 2;
}

std::string cursorOf(const std::string &key, std::uint64_t position)
{
    return fmt::format("{:x}-{:x}", position, std::hash<std::string>()(key));
}

std::uint64_t positionOf(const std::string &cursor, const std::string &key)
{
    std::uint64_t position = 0;
    const char *const end = cursor.data() + cursor.size();
    const auto [stop, error] = std::from_chars(cursor.data(), end, position, 16);
    if (error != std::errc() || stop == end || cursor != cursorOf(key, position)) {
        throw wrongUsage("cursor: not one of this question: leave it out to begin again");
    }
    return position;
}

} // namespace

std::vector<Parameter> pageParameters()
{
    using Type = Parameter::Type;
    Parameter limit("limit", Type::Number, "Most rows of a page");
    limit.least = 1;
    limit.most = 100'000;
    limit.fallback = 100;
    Parameter bytes("max_bytes", Type::Number, "Most bytes of an answer");
    bytes.least = 4096;
    bytes.most = 1U << 28U;
    bytes.fallback = 65536;
    return {limit, bytes, {"cursor", Type::Text, "next_cursor of the page before, with the same other arguments"}};
}

std::string Pages::page(const Question &question, const Arguments &arguments, Call &call)
{
    const std::string key = question.key + arguments.canonical({"limit", "max_bytes", "cursor"});
    const std::uint64_t begin = arguments.has("cursor") ? positionOf(arguments.text("cursor"), key) : 0;
    Result result = take({key, {}, {}, question.find}, begin);

    Json head = question.head;
    std::string page = jsonText(head);
    page.pop_back();
    page += fmt::format("{}\"{}\":[", head.empty() ? "" : ",", question.rows);
    const std::uint64_t mostRows = arguments.number("limit");
    const std::uint64_t mostBytes = arguments.number("max_bytes");
    std::size_t bytes = FRAME + costOf(page);
    bool isFull = false;
    while (!isFull) {
        while (result.rows->empty() && !result.isAtEnd) {
            call.step(result.position - begin);
            result.isAtEnd = !result.source->step(*result.rows);
        }
        if (result.rows->empty()) {
            break;
        }
        const std::size_t cost = costOf(result.rows->front());
        if (result.position == begin && bytes + cost > mostBytes) {
            const std::string fault =
                fmt::format("the answer takes {} bytes, of which max_bytes allows {}", bytes + cost, mostBytes);
            keep(std::move(result));
            throw wrongUsage(fault);
        }
        isFull = result.position - begin == mostRows || bytes + cost > mostBytes;
        if (!isFull) {
            page += result.position == begin ? "" : ",";
            page += result.rows->front();
            bytes += cost;
            result.rows->pop();
            ++result.position;
        }
    }
    page += fmt::format("],\"ending\":\"{}\"", nameOf(isFull ? Ending::Limit : Ending::Complete));
    if (isFull) {
        page += fmt::format(",\"next_cursor\":\"{}\"", cursorOf(key, result.position));
        keep(std::move(result));
    }
    return page + "}";
}

Pages::Result Pages::take(const Question &question, std::uint64_t position)
{
    const auto found = std::find_if(m_kept.begin(), m_kept.end(), [&](const Result &each) {
        return each.key == question.key && each.position == position;
    });
    if (found != m_kept.end()) {
        Result result = std::move(*found);
        m_kept.erase(found);
        return result;
    }
    Result result;
    result.key = question.key;
    result.position = position;
    result.source = question.find();
    result.rows = std::make_unique<RowBuffer>(result.source->columns(), position);
    return result;
}

void Pages::keep(Result result)
{
    m_kept.push_front(std::move(result));
    if (m_kept.size() > MOST_KEPT) {
        m_kept.pop_back();
    }
}

} // namespace kvr::netlistdb::tool
