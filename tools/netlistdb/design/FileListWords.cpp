#include "design/FileListWords.h"

#include "base/Failure.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>

namespace kvr::netlistdb::tool {

namespace {

bool isBlank(char c)
{
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool isNameCharacter(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

class Scanner {
  public:
    Scanner(const std::string &name, std::string_view text) : m_name(name), m_text(text) {}

    std::vector<FileListWord> words()
    {
        std::vector<FileListWord> words;
        while (skipToWord()) {
            words.push_back({{}, m_line});
            takeWord(words.back().text);
        }
        return words;
    }

  private:
    bool begins(std::string_view with) const { return m_text.substr(m_at, with.size()) == with; }

    [[noreturn]] void fail(std::size_t line, const std::string &fault) const
    {
        throw refused(fmt::format("{}:{}", m_name, line), fault);
    }

    void step()
    {
        m_line += m_text[m_at] == '\n' ? 1 : 0;
        ++m_at;
    }

    /// Passes over blanks, comments and a backslash that joins two lines. False at the end.
    bool skipToWord()
    {
        while (m_at < m_text.size()) {
            if (isBlank(m_text[m_at])) {
                step();
            } else if (begins("//") || begins("#")) {
                m_at = std::min(m_text.find('\n', m_at), m_text.size());
            } else if (begins("/*")) {
                skipComment();
            } else if (begins("\\\n") || begins("\\\r\n")) {
                ++m_at;
            } else {
                return true;
            }
        }
        return false;
    }

    void skipComment()
    {
        const std::size_t line = m_line;
        const std::size_t end = m_text.find("*/", m_at + 2);
        if (end == std::string_view::npos) {
            fail(line, "a comment that begins here does not end");
        }
        while (m_at < end + 2) {
            step();
        }
    }

    void takeWord(std::string &word)
    {
        const std::size_t line = m_line;
        bool quoted = false;
        for (; m_at < m_text.size() && (quoted || !isBlank(m_text[m_at])); step()) {
            if (m_text[m_at] == '"') {
                quoted = !quoted;
            } else if (m_text[m_at] == '$') {
                takeVariable(word);
            } else {
                word += m_text[m_at];
            }
        }
        if (quoted) {
            fail(line, "a quote that begins here does not end");
        }
    }

    /// With the scanner on a dollar sign; leaves it on the last character of the variable.
    void takeVariable(std::string &word)
    {
        const char open = m_at + 1 < m_text.size() ? m_text[m_at + 1] : '\0';
        const bool bracketed = open == '{' || open == '(';
        const std::size_t begin = m_at + (bracketed ? 2 : 1);
        std::size_t end = begin;
        while (end < m_text.size() && isNameCharacter(m_text[end])) {
            ++end;
        }
        const bool closed = !bracketed || (end < m_text.size() && m_text[end] == (open == '{' ? '}' : ')'));
        if (end == begin || !closed) {
            word += '$';
            return;
        }
        const std::string name(m_text.substr(begin, end - begin));
        const char *value = std::getenv(name.c_str());
        if (value == nullptr) {
            fail(m_line, "the variable '" + name + "' is not set");
        }
        word += value;
        m_at = end - (bracketed ? 0 : 1);
    }

    const std::string &m_name;
    std::string_view m_text;
    std::size_t m_at = 0;
    std::size_t m_line = 1;
};

} // namespace

std::vector<FileListWord> wordsOfFileList(const std::string &name, const std::string &text)
{
    return Scanner(name, text).words();
}

} // namespace kvr::netlistdb::tool
