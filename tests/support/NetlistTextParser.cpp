#include "tests/support/NetlistTextParser.h"

#include <cctype>
#include <limits>
#include <set>
#include <stdexcept>

namespace testsupport {

namespace {

struct Token {
    enum Kind { END, NAME, QUOTED, SIGN };
    Kind kind;
    std::string text;
    unsigned line;
};

class Lexer {
  public:
    explicit Lexer(std::string_view text) : m_text(text) {}

    std::vector<Token> run()
    {
        std::vector<Token> tokens;
        do {
            tokens.push_back(next());
        } while (tokens.back().kind != Token::END);
        return tokens;
    }

  private:
    static bool isNameStart(char c)
    {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
               std::string_view("_$./\\<>-").find(c) != std::string_view::npos;
    }
    static bool isNamePart(char c) { return isNameStart(c) || c == '[' || c == ']'; }
    bool atComment() const { return m_text.substr(m_at, 2) == "//"; }

    void skipBlanks()
    {
        while (m_at < m_text.size()) {
            if (atComment()) {
                while (m_at < m_text.size() && m_text[m_at] != '\n') {
                    ++m_at;
                }
            } else if (std::isspace(static_cast<unsigned char>(m_text[m_at])) != 0) {
                m_line += m_text[m_at] == '\n';
                ++m_at;
            } else {
                return;
            }
        }
    }

    Token next()
    {
        skipBlanks();
        if (m_at == m_text.size()) {
            return {Token::END, "", m_line};
        }
        if (m_text[m_at] == '"') {
            return quoted();
        }
        const std::size_t begin = m_at;
        if (!isNameStart(m_text[m_at])) {
            return {Token::SIGN, std::string(1, m_text[m_at++]), m_line};
        }
        while (m_at < m_text.size() && isNamePart(m_text[m_at]) && !atComment()) {
            ++m_at;
        }
        return {Token::NAME, std::string(m_text.substr(begin, m_at - begin)), m_line};
    }

    Token quoted()
    {
        const std::size_t end = m_text.find('"', m_at + 1);
        if (end == std::string_view::npos) {
            netlistTextError(m_line, "a quotation mark is never closed");
        }
        Token token{Token::QUOTED, std::string(m_text.substr(m_at + 1, end - m_at - 1)), m_line};
        for (const char c : token.text) {
            m_line += c == '\n';
        }
        m_at = end + 1;
        return token;
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    unsigned m_line = 1;
};

class Parser {
  public:
    explicit Parser(std::string_view text) : m_tokens(Lexer(text).run()) {}

    std::vector<Unit> run()
    {
        std::vector<Unit> units;
        while (token().kind != Token::END) {
            units.push_back(unit());
        }
        return units;
    }

  private:
    const Token &token(std::size_t ahead = 0) const { return m_tokens[std::min(m_at + ahead, m_tokens.size() - 1)]; }
    bool atSign(char sign) const { return token().kind == Token::SIGN && token().text[0] == sign; }
    bool atWord(std::string_view word) const { return token().kind == Token::NAME && token().text == word; }

    [[noreturn]] void fail(const std::string &expected) const
    {
        netlistTextError(token().line,
                         "expected " + expected + ", found " +
                             (token().kind == Token::END ? std::string("the end") : "\"" + token().text + "\""));
    }
    bool takeSign(char sign)
    {
        const bool found = atSign(sign);
        m_at += found;
        return found;
    }
    bool takeWord(std::string_view word)
    {
        const bool found = atWord(word);
        m_at += found;
        return found;
    }
    void expect(char sign)
    {
        if (!takeSign(sign)) {
            fail(std::string(1, sign));
        }
    }
    std::string text(const char *what)
    {
        if (token().kind != Token::NAME && token().kind != Token::QUOTED) {
            fail(what);
        }
        return m_tokens[m_at++].text;
    }
    Name name(const char *what)
    {
        if (takeSign('!')) {
            return std::nullopt;
        }
        return text(what);
    }
    long long number(long long least, long long largest)
    {
        const std::string digits = text("a number");
        std::size_t used = 0;
        long long value = 0;
        try {
            value = std::stoll(digits, &used);
        } catch (const std::logic_error &) {
            used = 0;
        }
        if (used == 0 || used != digits.size() || value < least || value > largest) {
            --m_at;
            fail("a number");
        }
        return value;
    }
    Bounds bounds()
    {
        expect('[');
        const auto left = integer();
        expect(':');
        const auto right = integer(']');
        return {left, right};
    }
    int integer(char closing = 0)
    {
        // A bound and the bracket behind it come as one name.
        Token &token = m_tokens[m_at];
        bool closed = false;
        if (closing != 0 && token.kind == Token::NAME && !token.text.empty() && token.text.back() == closing) {
            token.text.pop_back();
            closed = true;
        }
        const long long value = number(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
        if (closing != 0 && !closed) {
            expect(closing);
        }
        return static_cast<int>(value);
    }

    Unit unit()
    {
        static const std::set<std::string> KINDS{"module", "blackbox", "operator", "primitive", "register"};
        Unit unit;
        unit.line = token().line;
        if (token().kind != Token::NAME || KINDS.count(token().text) == 0) {
            fail("a kind of unit");
        }
        unit.kind = m_tokens[m_at++].text;
        unit.name = text("a unit's name");
        expect('(');
        std::string direction;
        while (!takeSign(')')) {
            if (!unit.ports.empty()) {
                expect(',');
            }
            unit.ports.push_back(port(direction));
        }
        unit.traits = traits();
        while (!takeWord("end")) {
            unit.statements.push_back(statement());
        }
        return unit;
    }

    PortText port(std::string &direction)
    {
        PortText port;
        for (const char *word : {"in", "out", "inout", "none"}) {
            if (takeWord(word)) {
                direction = word;
                break;
            }
        }
        if (direction.empty()) {
            fail("a direction");
        }
        port.direction = direction;
        if (atSign('[')) {
            port.bounds = bounds();
        }
        port.name = name("a port's name");
        port.traits = traits();
        return port;
    }

    Traits traits()
    {
        static const std::set<std::string> SETTINGS{"clock", "type", "input", "library", "view"};
        Traits traits;
        for (;;) {
            // An instance may have the name of a trait.
            const bool isInstance = token(1).kind == Token::SIGN && token(1).text == ":";
            if (takeSign('@')) {
                std::string key = text("an attribute's name");
                Name value;
                if (takeSign('=')) {
                    value = name("an attribute's value");
                }
                traits.attributes.emplace_back(std::move(key), std::move(value));
            } else if (takeSign('#')) {
                std::string key = text("a parameter's name");
                expect('=');
                traits.parameters.emplace_back(std::move(key), text("a parameter's value"));
            } else if (isInstance || token().kind != Token::NAME) {
                return traits;
            } else if (takeWord("at")) {
                traits.file = text("a file");
                expect(':');
                traits.line = static_cast<unsigned>(number(0, std::numeric_limits<unsigned>::max()));
            } else if (SETTINGS.count(token().text) != 0 && token(1).kind == Token::SIGN && token(1).text == "=") {
                std::string key = text("a setting");
                expect('=');
                traits.settings.emplace_back(std::move(key), text("a setting's value"));
            } else if (!takeFlag(traits)) {
                return traits;
            }
        }
    }

    bool takeFlag(Traits &traits)
    {
        const std::pair<const char *, bool *> flags[] = {{"protected", &traits.isProtected},
                                                         {"clock", &traits.isClock},
                                                         {"loose", &traits.isLoose},
                                                         {"blackbox", &traits.isBlackBox},
                                                         {"plain", &traits.isPlain}};
        for (const auto &[word, flag] : flags) {
            if (takeWord(word)) {
                *flag = true;
                return true;
            }
        }
        return false;
    }

    Statement statement()
    {
        Statement statement;
        statement.line = token().line;
        const bool isInstance = token(1).kind == Token::SIGN && token(1).text == ":";
        if (!isInstance && takeWord("net")) {
            statement.kind = Statement::NET;
            statement.name = name("a net's name");
        } else if (!isInstance && takeWord("ram")) {
            statement.kind = Statement::RAM;
            statement.name = name("a net's name");
            statement.bits = static_cast<unsigned>(number(0, std::numeric_limits<unsigned>::max()));
        } else if (!isInstance && takeWord("bus")) {
            statement.kind = Statement::BUS;
            statement.bounds = bounds();
            statement.name = name("a bus's name");
        } else if (!isInstance && takeWord("connect")) {
            statement.kind = Statement::CONNECT;
            statement.name = name("a port's name");
            expect('=');
            statement.value = value();
            return statement;
        } else {
            instance(statement);
        }
        statement.traits = traits();
        if (statement.kind == Statement::BUS && takeSign('=')) {
            statement.value = value();
        }
        return statement;
    }

    void instance(Statement &statement)
    {
        statement.kind = Statement::INSTANCE;
        statement.name = name("a statement");
        expect(':');
        if (!takeSign('?')) {
            statement.cell = text("a cell's name");
        }
        if (!takeSign('(')) {
            return;
        }
        while (!takeSign(')')) {
            if (!statement.pins.empty()) {
                expect(',');
            }
            std::string pin = text("a pin's name");
            expect('=');
            statement.pins.emplace_back(std::move(pin), value());
        }
    }

    Name bit()
    {
        if (token().kind == Token::NAME && token().text == "-") {
            ++m_at;
            return std::nullopt;
        }
        return text("a net's name");
    }

    Value value()
    {
        Value value;
        value.isList = takeSign('{');
        do {
            value.names.push_back(bit());
        } while (value.isList && takeSign(','));
        if (value.isList) {
            expect('}');
        }
        return value;
    }

    std::vector<Token> m_tokens;
    std::size_t m_at = 0;
};

} // namespace

const std::string *Traits::setting(std::string_view key) const
{
    for (const auto &[name, value] : settings) {
        if (name == key) {
            return &value;
        }
    }
    return nullptr;
}

void netlistTextError(unsigned line, const std::string &message)
{
    throw std::invalid_argument("netlist text, line " + std::to_string(line) + ": " + message);
}

std::vector<Unit> parseNetlistText(std::string_view text)
{
    return Parser(text).run();
}

} // namespace testsupport
