#include "platform/names/OtherNames.h"

#include <charconv>
#include <cstdlib>

namespace kvr::netlistdb::names {

namespace {

/// More than any vector has. A damaged line must not make its readers fill the memory.
constexpr long long MOST_BITS = 1LL << 24;

/// Takes the field in front of the next tab off @p line, without its escapes.
std::string takeField(std::string_view &line)
{
    std::string field;
    std::size_t at = 0;
    for (; at < line.size() && line[at] != '\t'; ++at) {
        if (line[at] != '\\' || at + 1 == line.size()) {
            field += line[at];
            continue;
        }
        const char escaped = line[++at];
        field += escaped == 't' ? '\t' : escaped == 'n' ? '\n' : escaped;
    }
    line.remove_prefix(at < line.size() ? at + 1 : at);
    return field;
}

bool readNumber(std::string_view text, int &number)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool readRun(const std::string &field, NetRun &run)
{
    const std::size_t mark = field.find_first_of("=*");
    if (mark == std::string::npos) {
        return false;
    }
    const std::string_view numbers = std::string_view(field).substr(0, mark);
    if (field[mark] == '*') {
        int count = 0;
        run.kind = NetRun::Kind::Constant;
        if (mark + 2 != field.size() || !readNumber(numbers, count) || count < 1 || count > MOST_BITS) {
            return false;
        }
        run.constant = field[mark + 1];
        run.count = static_cast<unsigned>(count);
        return true;
    }
    run.net = field.substr(mark + 1);
    if (mark == 0) {
        return true;
    }
    const std::size_t colon = numbers.find(':');
    run.kind = NetRun::Kind::Vector;
    if (colon == std::string_view::npos || !readNumber(numbers.substr(0, colon), run.first) ||
        !readNumber(numbers.substr(colon + 1), run.last)) {
        return false;
    }
    const long long count = std::llabs(static_cast<long long>(run.last) - run.first) + 1;
    run.count = static_cast<unsigned>(count);
    return count <= MOST_BITS;
}

bool readLine(std::string_view line, OtherName &name)
{
    const std::string kind = takeField(line);
    if (kind.size() != 1 || std::string_view("dsh").find(kind.front()) == std::string_view::npos) {
        return false;
    }
    name.kind = static_cast<NameKind>(kind.front());
    name.name = takeField(line);
    const std::string left = takeField(line);
    const std::string right = takeField(line);
    name.isVector = !left.empty();
    if (name.isVector && (!readNumber(left, name.left) || !readNumber(right, name.right))) {
        return false;
    }
    name.src = takeField(line);
    name.hdlName = takeField(line);
    while (!line.empty()) {
        NetRun &run = name.bits.emplace_back();
        if (!readRun(takeField(line), run)) {
            return false;
        }
    }
    return true;
}

} // namespace

void OtherNamesText::begin(NameKind kind, std::string_view name, std::string_view src, std::string_view hdlName)
{
    m_text += static_cast<char>(kind);
    append(name);
    m_text += "\t\t";
    append(src);
    append(hdlName);
}

void OtherNamesText::begin(NameKind kind, std::string_view name, int left, int right, std::string_view src,
                           std::string_view hdlName)
{
    m_text += static_cast<char>(kind);
    append(name);
    append(std::to_string(left));
    append(std::to_string(right));
    append(src);
    append(hdlName);
}

void OtherNamesText::addNet(std::string_view net)
{
    addRun();
    m_run.kind = NetRun::Kind::Net;
    m_run.net = net;
    m_open = true;
}

void OtherNamesText::addVectorBit(std::string_view vector, int index)
{
    if (m_open && m_run.kind == NetRun::Kind::Vector && m_run.net == vector) {
        const int step = index - m_run.last;
        const bool goesOn =
            m_run.first == m_run.last ? step == 1 || step == -1 : step == (m_run.first < m_run.last ? 1 : -1);
        if (goesOn) {
            m_run.last = index;
            return;
        }
    }
    addRun();
    m_run.kind = NetRun::Kind::Vector;
    m_run.net = vector;
    m_run.first = m_run.last = index;
    m_open = true;
}

void OtherNamesText::addConstant(char constant)
{
    if (m_open && m_run.kind == NetRun::Kind::Constant && m_run.constant == constant) {
        ++m_run.count;
        return;
    }
    addRun();
    m_run.kind = NetRun::Kind::Constant;
    m_run.constant = constant;
    m_run.count = 1;
    m_open = true;
}

void OtherNamesText::end()
{
    addRun();
    m_text += '\n';
}

void OtherNamesText::addRun()
{
    if (!m_open) {
        return;
    }
    m_open = false;
    switch (m_run.kind) {
    case NetRun::Kind::Net:
        append("=" + m_run.net);
        break;
    case NetRun::Kind::Vector:
        append(std::to_string(m_run.first) + ":" + std::to_string(m_run.last) + "=" + m_run.net);
        break;
    case NetRun::Kind::Constant:
        append(std::to_string(m_run.count) + "*" + m_run.constant);
        break;
    }
}

void OtherNamesText::append(std::string_view field)
{
    m_text += '\t';
    for (const char c : field) {
        if (c == '\\' || c == '\t' || c == '\n') {
            m_text += '\\';
            m_text += c == '\t' ? 't' : c == '\n' ? 'n' : c;
        } else {
            m_text += c;
        }
    }
}

void readOtherNames(std::string_view text, const std::function<void(const OtherName &name)> &visit)
{
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        OtherName name;
        if (readLine(text.substr(0, end), name)) {
            visit(name);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

std::string hierarchicalName(std::string_view name, std::string_view hdlName, std::string_view scopeName)
{
    if (!hdlName.empty() || scopeName.empty()) {
        return std::string(hdlName);
    }
    // Flattening writes `$flatten\scope.name`, with a backslash in front of every segment that the user wrote.
    constexpr std::string_view flattened = "$flatten";
    if (name.substr(0, flattened.size()) == flattened) {
        std::size_t at = flattened.size();
        std::string_view scope = scopeName;
        while (!scope.empty()) {
            const std::string_view segment = scope.substr(0, scope.find(' '));
            at += at < name.size() && name[at] == '\\' ? 1 : 0;
            if (name.substr(at, segment.size() + 1) != std::string(segment) + ".") {
                break;
            }
            at += segment.size() + 1;
            scope.remove_prefix(std::min(segment.size() + 1, scope.size()));
        }
        if (scope.empty()) {
            name.remove_prefix(at);
        }
    }
    return std::string(scopeName) + " " + std::string(name);
}

} // namespace kvr::netlistdb::names
