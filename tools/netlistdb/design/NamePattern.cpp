#include "design/NamePattern.h"

#include "base/Failure.h"

#include <re2/re2.h>
#include <simdjson.h>

namespace kvr::netlistdb::tool {

namespace {

using re2::RE2;

std::string explain(const RE2 &expression)
{
    const std::string &part = expression.error_arg();
    switch (expression.error_code()) {
    case RE2::ErrorBadEscape:
        return "unknown escape '" + part + "' (there are no back-references)";
    case RE2::ErrorBadCharClass:
    case RE2::ErrorBadCharRange:
        return "bad character class or range '" + part + "'";
    case RE2::ErrorMissingBracket:
        return "unmatched '['";
    case RE2::ErrorMissingParen:
    case RE2::ErrorUnexpectedParen:
        return "unmatched parenthesis";
    case RE2::ErrorTrailingBackslash:
        return "trailing backslash";
    case RE2::ErrorRepeatArgument:
    case RE2::ErrorRepeatOp:
        return "nothing to repeat before '" + part + "'";
    case RE2::ErrorRepeatSize:
        return "bad range in '" + part + "' (at most 1000)";
    case RE2::ErrorBadPerlOp:
        return "unknown group '" + part + "' (there is no lookahead and no lookbehind)";
    case RE2::ErrorBadNamedCapture:
        return "bad group name in '" + part + "'";
    default:
        return "too large";
    }
}

bool isUtf8(std::string_view text)
{
    return simdjson::validate_utf8(text.data(), text.size());
}

std::unique_ptr<const RE2> compile(const std::string &expression, bool ignoreCase, RE2::Options::Encoding encoding)
{
    RE2::Options options;
    options.set_encoding(encoding);
    options.set_case_sensitive(!ignoreCase);
    options.set_log_errors(false);
    options.set_max_mem(std::int64_t{64} << 20);
    return std::make_unique<RE2>(expression, options);
}

} // namespace

NamePattern::NamePattern(Kind kind, const std::string &text, bool ignoreCase)
    : m_text(text), m_isWhole(kind == Kind::Glob)
{
    if (kind == Kind::Plain && !ignoreCase) {
        return;
    }
    const std::string expression = kind == Kind::Regex  ? text
                                   : kind == Kind::Glob ? regexOfGlob(text)
                                                        : RE2::QuoteMeta(text);
    m_bytes = compile(expression, ignoreCase, RE2::Options::EncodingLatin1);
    if (isUtf8(text)) {
        m_characters = compile(expression, ignoreCase, RE2::Options::EncodingUTF8);
    }
    for (const RE2 *each : {m_characters.get(), m_bytes.get()}) {
        if (each != nullptr && !each->ok()) {
            throw wrongUsage("bad regular expression '" + text + "': " + explain(*each));
        }
    }
}

NamePattern::~NamePattern() = default;

bool NamePattern::matches(std::string_view fullName) const
{
    if (m_bytes == nullptr) {
        return fullName.find(m_text) != std::string_view::npos;
    }
    const RE2 &expression = m_characters != nullptr && isUtf8(fullName) ? *m_characters : *m_bytes;
    const re2::StringPiece name(fullName.data(), fullName.size());
    return expression.Match(name, 0, name.size(), m_isWhole ? RE2::ANCHOR_BOTH : RE2::UNANCHORED, nullptr, 0);
}

std::string regexOfGlob(const std::string &glob)
{
    std::string regex;
    for (std::size_t at = 0; at < glob.size(); ++at) {
        const char c = glob[at];
        const char next = at + 1 < glob.size() ? glob[at + 1] : '\0';
        if (c == '*' && next == '*') {
            regex += "(?s:.*)";
            ++at;
        } else if (c == '*') {
            regex += "[^/]*";
        } else if (c == '?') {
            regex += "[^/]";
        } else {
            const bool isEscape = c == '\\' && (next == '*' || next == '?' || next == '\\');
            at += isEscape ? 1 : 0;
            regex += RE2::QuoteMeta(re2::StringPiece(glob.data() + at, 1));
        }
    }
    return regex;
}

} // namespace kvr::netlistdb::tool
