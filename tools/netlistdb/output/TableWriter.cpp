#include "output/TableWriter.h"

#include "base/Terminal.h"
#include "output/OutputStream.h"
#include "output/ValueText.h"

#include <algorithm>

namespace kvr::netlistdb::tool {

namespace {

constexpr std::size_t ENOUGH_ROWS = 500;
constexpr auto WAIT_FOR_MORE_ROWS = std::chrono::milliseconds(100);
constexpr std::string_view GAP = "  ";

/// Characters of UTF-8 text; bytes that continue a character do not count.
std::size_t textWidth(const std::string &text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string_view escapeOf(Look look)
{
    switch (look) {
    case Look::Name:
        return "\x1b[36m";
    case Look::Dim:
        return "\x1b[2m";
    case Look::Plain:
        break;
    }
    return {};
}

} // namespace

void TableWriter::begin(const ResultHead &head)
{
    m_watched = m_stream.isTerminal();
    for (std::size_t at = 0; at < head.columns.size(); ++at) {
        const Column &column = head.columns[at];
        if (column.title != nullptr) {
            m_places.push_back({at, column, std::max<std::size_t>(textWidth(column.title), column.width)});
        }
    }
    m_settled =
        std::all_of(m_places.begin(), m_places.end() - 1, [](const Place &place) { return place.column.width != 0; });
}

void TableWriter::row(const Row &row)
{
    std::vector<std::string> cells;
    cells.reserve(m_places.size());
    for (const Place &place : m_places) {
        cells.push_back(printable(valueText(row[place.at])));
    }
    const bool first = m_firstRow == std::chrono::steady_clock::time_point();
    if (first) {
        m_firstRow = std::chrono::steady_clock::now();
    }
    if (!m_settled) {
        m_waiting.push_back(std::move(cells));
        if (m_waiting.size() >= ENOUGH_ROWS) {
            settle();
        }
        return;
    }
    if (first) {
        settle();
    }
    print(cells, false);
    m_stream.tick();
}

void TableWriter::end(Ending /*ending*/, const std::vector<Fact> & /*facts*/)
{
    if (!m_settled && !m_waiting.empty()) {
        settle();
    }
}

void TableWriter::tick()
{
    // Elsewhere than on a terminal the same result is the same text, however slowly it comes.
    if (m_watched && !m_settled && !m_waiting.empty() &&
        std::chrono::steady_clock::now() - m_firstRow >= WAIT_FOR_MORE_ROWS) {
        settle();
    }
    m_stream.tick();
}

void TableWriter::settle()
{
    m_settled = true;
    std::vector<std::string> titles;
    for (std::size_t column = 0; column < m_places.size(); ++column) {
        Place &place = m_places[column];
        titles.emplace_back(place.column.title);
        for (const std::vector<std::string> &cells : m_waiting) {
            place.width = std::max(place.width, textWidth(cells[column]));
        }
    }
    print(titles, true);
    for (const std::vector<std::string> &cells : m_waiting) {
        print(cells, false);
    }
    m_waiting.clear();
    m_stream.tick();
}

void TableWriter::print(const std::vector<std::string> &cells, bool head)
{
    std::string line;
    std::string padding;
    for (std::size_t at = 0; at < cells.size(); ++at) {
        const Place &place = m_places[at];
        const std::size_t width = textWidth(cells[at]);
        const std::size_t missing = width < place.width ? place.width - width : 0;
        // Blanks wait until something follows them.
        padding.append(place.column.number ? missing : 0, ' ');
        if (!cells[at].empty()) {
            const std::string_view escape = !m_color ? "" : head ? "\x1b[1m" : escapeOf(place.column.look);
            line += padding;
            padding.clear();
            line += escape;
            line += cells[at];
            line += escape.empty() ? "" : "\x1b[0m";
        }
        padding.append(place.column.number ? 0 : missing, ' ');
        padding += GAP;
    }
    line += '\n';
    m_stream.write(line);
}

} // namespace kvr::netlistdb::tool
