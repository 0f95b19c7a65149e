#include "dev/DevShellText.h"

#include "dev/DevShellVariables.h"

#include <algorithm>
#include <utility>

namespace lmp {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

int hexValue(char c) {
    if (isDigit(c))
        return c - '0';
    const char lower = char(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// One pass over the text.
class Reader {
public:
    Reader(std::string_view text, DevShellText &result)
        : m_text(text)
        , m_result(result) {}

    void read() {
        while (m_at < m_text.size())
            readOne(m_text[m_at++]);
        endPart();
    }

private:
    void readOne(char c);
    void readSingleQuoted();
    void readDoubleQuoted();
    void readAnsiQuoted();
    void readEscaped();
    char ansiEscape();
    void readDollar(bool quoted);
    void readName();
    void readSubstitution(char open, char close);
    void readBackticks();
    void readRedirection(char c);
    void skipComment() { m_at = std::min(m_text.find('\n', m_at), m_text.size()); }

    bool isNext(std::string_view text) const { return m_text.substr(m_at).starts_with(text); }
    void add(char c) {
        m_word += c;
        m_inWord = true;
    }
    void endWord();
    void endPart();

    std::string_view m_text;
    DevShellText &m_result;
    std::size_t m_at = 0;
    std::string m_word;
    bool m_inWord = false;
    bool m_behindWord = false; ///< right behind something that leaves no word; no comment begins here
    bool m_isTarget = false;   ///< the next word is what a redirection names
    DevShellText::Part m_part;
};

void Reader::readOne(char c) {
    switch (c) {
    case '\\':
        return readEscaped();
    case '\'':
        return readSingleQuoted();
    case '"':
        return readDoubleQuoted();
    case '$':
        readDollar(false);
        m_behindWord = true;
        return;
    case '`':
        readBackticks();
        m_behindWord = true;
        return;
    case '<':
    case '>':
        return readRedirection(c);
    case ' ':
    case '\t':
        m_behindWord = false;
        return endWord();
    case ';':
    case '&':
    case '|':
    case '\n':
    case '(':
    case ')':
        return endPart();
    case '#':
        return m_inWord || m_behindWord ? add(c) : skipComment();
    default:
        add(c);
    }
}

void Reader::readEscaped() {
    if (isNext("\n"))
        ++m_at;
    else if (m_at < m_text.size())
        add(m_text[m_at++]);
}

void Reader::readSingleQuoted() {
    const auto end = std::min(m_text.find('\'', m_at), m_text.size());
    m_word += m_text.substr(m_at, end - m_at);
    m_inWord = true;
    m_at = std::min(end + 1, m_text.size());
}

void Reader::readDoubleQuoted() {
    m_inWord = true;
    while (m_at < m_text.size()) {
        const char c = m_text[m_at++];
        if (c == '"')
            return;
        if (c == '$')
            readDollar(true);
        else if (c == '`')
            readBackticks();
        else if (c == '\\' && m_at < m_text.size() && std::string_view("$`\"\\\n").contains(m_text[m_at]))
            readEscaped();
        else
            add(c);
    }
}

/// $'...', which spells characters by their codes.
void Reader::readAnsiQuoted() {
    m_inWord = true;
    while (m_at < m_text.size()) {
        const char c = m_text[m_at++];
        if (c == '\'')
            return;
        add(c == '\\' && m_at < m_text.size() ? ansiEscape() : c);
    }
}

char Reader::ansiEscape() {
    const char c = m_text[m_at++];
    int code = 0, digits = 0;
    if (c == 'x' || c == 'u' || c == 'U') {
        const int most = c == 'x' ? 2 : c == 'u' ? 4 : 8;
        for (int value = 0; digits < most && m_at < m_text.size() && (value = hexValue(m_text[m_at])) >= 0; ++digits) {
            code = (code * 16 + value) & 0xffff;
            ++m_at;
        }
        return char(code);
    }
    if (c >= '0' && c <= '7') {
        for (code = c - '0', digits = 1; digits < 3 && m_at < m_text.size() && (m_text[m_at] & ~7) == '0'; ++digits)
            code = code * 8 + (m_text[m_at++] - '0');
        return char(code);
    }
    return c == 'n' || c == 'r' || c == 't' ? ' ' : c;
}

void Reader::readDollar(bool quoted) {
    if (isNext("(")) {
        ++m_at;
        return readSubstitution('(', ')');
    }
    if (isNext("{IFS")) {
        m_at = std::min(m_text.find('}', m_at), m_text.size() - 1) + 1;
        return quoted ? add(' ') : endWord();
    }
    if (isNext("IFS")) {
        m_at += 3;
        return quoted ? add(' ') : endWord();
    }
    if (m_at < m_text.size() && (isDigit(m_text[m_at]) || m_text[m_at] == '@' || m_text[m_at] == '*')) {
        ++m_at; // an argument of the script, and there are none
        return;
    }
    if (m_at < m_text.size() && DevShellVariables::isNameStart(m_text[m_at]))
        return readName();
    if (!quoted && isNext("'")) {
        ++m_at;
        return readAnsiQuoted();
    }
    if (quoted || !isNext("\""))
        add('$');
}

/// Keeps the name apart from what follows, which a quotation may have done so far.
void Reader::readName() {
    add('$');
    add('{');
    for (; m_at < m_text.size() && DevShellVariables::isNamePart(m_text[m_at]); ++m_at)
        add(m_text[m_at]);
    add('}');
}

/// Takes what is inside as a text of its own.
void Reader::readSubstitution(char open, char close) {
    const auto start = m_at;
    int depth = 1;
    char quote = 0;
    for (; m_at < m_text.size(); ++m_at) {
        const char c = m_text[m_at];
        if (c == '\\' && quote != '\'')
            ++m_at;
        else if (quote != 0)
            quote = c == quote ? char(0) : quote;
        else if (c == '\'' || c == '"')
            quote = c;
        else if (c == open)
            ++depth;
        else if (c == close && --depth == 0)
            break;
    }
    const auto end = std::min(m_at, m_text.size());
    m_result.nested.emplace_back(m_text.substr(start, end - start));
    m_at = std::min(end + 1, m_text.size());
}

void Reader::readBackticks() {
    std::string inside;
    while (m_at < m_text.size() && m_text[m_at] != '`') {
        if (m_text[m_at] == '\\' && m_at + 1 < m_text.size() && std::string_view("`\\$").contains(m_text[m_at + 1]))
            ++m_at;
        inside += m_text[m_at++];
    }
    m_at = std::min(m_at + 1, m_text.size());
    m_result.nested.push_back(std::move(inside));
}

void Reader::readRedirection(char c) {
    if (isNext("(")) {
        ++m_at;
        m_behindWord = true;
        return readSubstitution('(', ')');
    }
    // A number right before it is a descriptor.
    if (m_inWord && std::ranges::all_of(m_word, isDigit)) {
        m_word.clear();
        m_inWord = false;
    }
    endWord();
    while (m_at < m_text.size() && std::string_view(c == '<' ? "<>&-" : ">|&-").contains(m_text[m_at]))
        ++m_at;
    m_isTarget = true;
}

void Reader::endWord() {
    if (!std::exchange(m_inWord, false))
        return;
    (std::exchange(m_isTarget, false) ? m_part.targets : m_part.words).push_back(std::exchange(m_word, {}));
}

void Reader::endPart() {
    endWord();
    m_isTarget = m_behindWord = false;
    if (!m_part.words.empty() || !m_part.targets.empty())
        m_result.parts.push_back(std::exchange(m_part, {}));
}

} // namespace

DevShellText DevShellText::read(std::string_view text) {
    DevShellText result;
    Reader(text, result).read();
    return result;
}

} // namespace lmp
