#include "labels/TextGridTokens.h"

#include <cctype>
#include <charconv>
#include <cmath>

namespace
{
class Scanner
{
public:
    explicit Scanner(std::string_view text) : m_text(text) {}

    bool done() const { return m_pos >= m_text.size(); }
    char peek(std::size_t ahead = 0) const
    {
        return m_pos + ahead < m_text.size() ? m_text[m_pos + ahead] : '\0';
    }
    char take()
    {
        const char c = m_text[m_pos++];
        if (c == '\n')
            ++m_line;
        return c;
    }
    int line() const { return m_line; }
    std::size_t pos() const { return m_pos; }
    std::string_view from(std::size_t start) const { return m_text.substr(start, m_pos - start); }

private:
    std::string_view m_text;
    std::size_t m_pos = 0;
    int m_line = 1;
};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isWordChar(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

bool startsNumber(const Scanner& s)
{
    const char c = s.peek();
    if (isDigit(c))
        return true;
    if (c == '-' || c == '+')
        return isDigit(s.peek(1)) || (s.peek(1) == '.' && isDigit(s.peek(2)));
    return c == '.' && isDigit(s.peek(1));
}

// A quoted text: a quote inside is written twice. Texts may run over several lines.
bool readText(Scanner& s, TextGridToken& token)
{
    s.take();
    while (!s.done()) {
        const char c = s.take();
        if (c != '"') {
            token.text += c;
            continue;
        }
        if (s.peek() != '"')
            return true;
        token.text += s.take();
    }
    return false;
}

bool readNumber(Scanner& s, TextGridToken& token)
{
    const std::size_t start = s.pos();
    if (s.peek() == '+')
        s.take();
    while (!s.done() && (isDigit(s.peek()) || s.peek() == '.' || s.peek() == '-' || s.peek() == '+' ||
                         s.peek() == 'e' || s.peek() == 'E'))
        s.take();
    std::string_view digits = s.from(start);
    if (!digits.empty() && digits.front() == '+')
        digits.remove_prefix(1);
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), token.number);
    return ec == std::errc() && end == digits.data() + digits.size() && std::isfinite(token.number);
}

// "[12]" after a block name; an empty "[]" gives no token.
void readIndex(Scanner& s, const std::string& word, std::vector<TextGridToken>& tokens)
{
    const int line = s.line();
    s.take();
    const std::size_t start = s.pos();
    while (!s.done() && s.peek() != ']' && s.peek() != '\n')
        s.take();
    const std::string_view inside = s.from(start);
    if (s.peek() == ']')
        s.take();
    long index = 0;
    const auto [end, ec] = std::from_chars(inside.data(), inside.data() + inside.size(), index);
    if (!inside.empty() && ec == std::errc() && end == inside.data() + inside.size())
        tokens.push_back({TextGridToken::Index, line, static_cast<double>(index), word});
}
} // namespace

bool tokenizeTextGrid(std::string_view text, std::vector<TextGridToken>& tokens, int& line, std::string& why)
{
    Scanner s(text);
    std::string word; // the last name read, for the block indices after it
    while (!s.done()) {
        const char c = s.peek();
        TextGridToken token;
        token.line = s.line();
        if (c == '"') {
            token.kind = TextGridToken::Text;
            if (!readText(s, token)) {
                line = token.line;
                why = "a text opened on this line is never closed (the file is cut short?)";
                return false;
            }
            tokens.push_back(std::move(token));
        } else if (startsNumber(s)) {
            const std::size_t start = s.pos();
            if (!readNumber(s, token)) {
                line = token.line;
                why = "\"" + std::string(s.from(start)) + "\" is not a number that can be read";
                return false;
            }
            tokens.push_back(std::move(token));
        } else if (c == '<') {
            const std::size_t start = s.pos();
            while (!s.done() && s.peek() != '>' && s.peek() != '\n')
                s.take();
            token.kind = TextGridToken::Flag;
            token.text = std::string(s.from(start + 1));
            if (s.peek() == '>')
                s.take();
            tokens.push_back(std::move(token));
        } else if (c == '!') { // a comment to the end of the line
            while (!s.done() && s.peek() != '\n')
                s.take();
        } else if (c == '[') {
            readIndex(s, word, tokens);
        } else if (isWordChar(c)) {
            const std::size_t start = s.pos();
            while (!s.done() && isWordChar(s.peek()))
                s.take();
            word = std::string(s.from(start));
        } else {
            s.take(); // blanks and the punctuation of names: '=', ':', '?'
        }
    }
    return true;
}
