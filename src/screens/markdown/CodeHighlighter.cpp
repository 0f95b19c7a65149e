#include "CodeHighlighter.h"

#include "CodeLanguage.h"

#include <algorithm>

namespace lmp {

namespace {

using Kind = CodeHighlighter::Kind;
using Form = CodeLanguage::Form;

/// As in '\U0010ffff'.
constexpr qsizetype longestCharacter = 12;

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

bool isWord(QChar c) {
    return c.isLetterOrNumber() || c == u'_' || c.isSurrogate();
}

/// One walk over one piece of code.
class Scanner {
public:
    Scanner(QStringView code, const CodeLanguage &language)
        : m_code(code)
        , m_language(language)
        , m_keywords(language.keywords.split(u' '))
        , m_lineComments(language.lineComments.isEmpty() ? QList<QStringView>() : language.lineComments.split(u' ')) {
        std::ranges::sort(m_keywords);
    }

    QList<CodeHighlighter::Span> scan() {
        while (m_at < m_code.size()) {
            const qsizetype before = m_at;
            if (m_language.form == Form::Changes)
                takeChange();
            else if (m_language.form == Form::Markup)
                takeMarkup();
            else
                takeToken();
            m_lineBegins =
                m_code[m_at - 1] == u'\n' || (m_lineBegins && m_code.sliced(before, m_at - before).trimmed().isEmpty());
        }
        return std::move(m_spans);
    }

private:
    [[nodiscard]] QStringView rest() const { return m_code.sliced(m_at); }
    /// The next character of the line that is no blank.
    [[nodiscard]] QChar afterBlanks(qsizetype from) const {
        while (from < m_code.size() && (m_code[from] == u' ' || m_code[from] == u'\t'))
            ++from;
        return from < m_code.size() ? m_code[from] : QChar();
    }
    [[nodiscard]] qsizetype lineEnd() const {
        const qsizetype feed = m_code.indexOf(u'\n', m_at);
        return feed < 0 ? m_code.size() : feed;
    }

    void mark(Kind kind, qsizetype end) {
        if (end > m_at)
            m_spans += {m_at, end - m_at, kind};
        m_at = end;
    }

    /// Up to and with the next `end`; all that is left when there is none.
    [[nodiscard]] qsizetype endOf(QStringView end, qsizetype from) const {
        const qsizetype found = m_code.indexOf(end, from);
        return found < 0 ? m_code.size() : found + end.size();
    }

    /// Behind the quote that closes the string; at the end of the line for one that may not be longer.
    [[nodiscard]] qsizetype endOfString(QChar quote, bool mayBeLong) const {
        for (qsizetype at = m_at + 1; at < m_code.size(); ++at) {
            if (m_code[at] == u'\\')
                ++at;
            else if (m_code[at] == quote)
                return at + 1;
            else if (m_code[at] == u'\n' && !mayBeLong)
                return at;
        }
        return m_code.size();
    }

    void takeChange() {
        const qsizetype end = lineEnd();
        const QStringView line = m_code.sliced(m_at, end - m_at);
        if (line.startsWith(u"+++") || line.startsWith(u"---") || line.startsWith(u"diff ") ||
            line.startsWith(u"index "))
            mark(Kind::Comment, end);
        else if (line.startsWith(u"@@"))
            mark(Kind::Keyword, end);
        else if (line.startsWith(u'+'))
            mark(Kind::Added, end);
        else if (line.startsWith(u'-'))
            mark(Kind::Removed, end);
        m_at = std::min(end + 1, m_code.size());
    }

    void takeMarkup() {
        const QChar c = m_code[m_at];
        if (rest().startsWith(u"<!--"))
            return mark(Kind::Comment, endOf(u"-->", m_at));
        if (c == u'<' && rest().size() > 1 &&
            (m_code[m_at + 1].isLetter() || QStringView(u"/!?").contains(m_code[m_at + 1]))) {
            m_inTag = true;
            qsizetype end = m_at + 2;
            while (end < m_code.size() && (isWord(m_code[end]) || QStringView(u"-:.").contains(m_code[end])))
                ++end;
            return mark(Kind::Keyword, end);
        }
        if (!m_inTag) {
            m_at += 1;
        } else if (c == u'>') {
            m_inTag = false;
            m_at += 1;
        } else if (c == u'"' || c == u'\'') {
            mark(Kind::String, endOf(m_code.sliced(m_at, 1), m_at + 1));
        } else if (isWord(c)) {
            qsizetype end = m_at;
            while (end < m_code.size() && (isWord(m_code[end]) || QStringView(u"-:.").contains(m_code[end])))
                ++end;
            mark(Kind::Name, end);
        } else {
            m_at += 1;
        }
    }

    void takeToken() {
        const QChar c = m_code[m_at];
        if (takeComment() || takeString())
            return;
        if (m_language.directives && m_lineBegins && c == u'#')
            return mark(Kind::Keyword, endOfWord(m_at + 1));
        if (m_language.variables && c == u'$' && rest().size() > 1 &&
            (isWord(m_code[m_at + 1]) || m_code[m_at + 1] == u'{'))
            return mark(Kind::Name, endOfWord(m_at + (m_code[m_at + 1] == u'{' ? 2 : 1)));
        if (isDigit(c))
            return takeNumber();
        if (isWord(c))
            return takeWord();
        ++m_at;
    }

    bool takeComment() {
        for (const QStringView begin : m_lineComments) {
            // "#" inside a word is no comment, and "//" after a colon is part of an address.
            const bool apart =
                m_at == 0 || (!isWord(m_code[m_at - 1]) && !QStringView(u":$").contains(m_code[m_at - 1]));
            if (apart && rest().startsWith(begin)) {
                mark(Kind::Comment, lineEnd());
                return true;
            }
        }
        if (m_language.commentBegin.isEmpty() || !rest().startsWith(m_language.commentBegin))
            return false;
        mark(Kind::Comment, endOf(m_language.commentEnd, m_at + m_language.commentBegin.size()));
        return true;
    }

    bool takeString() {
        const QChar c = m_code[m_at];
        if (m_language.longQuotes.contains(c)) {
            const QStringView triple = m_code.sliced(m_at, std::min<qsizetype>(3, rest().size()));
            if (m_language.triple && triple == QString(3, c)) {
                mark(Kind::String, endOf(triple, m_at + 3));
                return true;
            }
            if (!m_language.triple) {
                mark(Kind::String, endOfString(c, true));
                return true;
            }
        }
        if (m_language.quotes.contains(c)) {
            const qsizetype begin = m_at;
            mark(Kind::String, endOfString(c, false));
            if (m_language.form == Form::Data && m_at > begin && afterBlanks(m_at) == u':')
                m_spans.last().kind = Kind::Name;
            return true;
        }
        if (!m_language.characters || c != u'\'')
            return false;
        takeCharacter();
        return true;
    }

    /// A quote that closes at once; a lifetime or a digit separator does not.
    void takeCharacter() {
        const QStringView text = rest().left(longestCharacter);
        const bool escaped = text.size() > 1 && text[1] == u'\\';
        const qsizetype close = text.indexOf(u'\'', escaped ? 3 : 2);
        if (close > 0 && (escaped || close <= 3))
            mark(Kind::String, m_at + close + 1);
        else
            ++m_at;
    }

    void takeNumber() {
        qsizetype end = m_at + 1;
        while (end < m_code.size() &&
               (isWord(m_code[end]) || (m_code[end] == u'.' && end + 1 < m_code.size() && isDigit(m_code[end + 1]))))
            ++end;
        mark(Kind::Number, end);
    }

    [[nodiscard]] qsizetype endOfWord(qsizetype from) const {
        while (from < m_code.size() && isWord(m_code[from]))
            ++from;
        return from;
    }

    void takeWord() {
        qsizetype end = endOfWord(m_at);
        if (m_language.form == Form::Data && m_lineBegins) {
            qsizetype key = end;
            while (key < m_code.size() && (isWord(m_code[key]) || QStringView(u"-.").contains(m_code[key])))
                ++key;
            if (const QChar after = afterBlanks(key); after == u':' || after == u'=')
                return mark(Kind::Name, key);
        }
        const QString lower = m_language.caseless ? m_code.sliced(m_at, end - m_at).toString().toLower() : QString();
        const QStringView word = m_language.caseless ? QStringView(lower) : m_code.sliced(m_at, end - m_at);
        if (std::ranges::binary_search(m_keywords, word))
            mark(Kind::Keyword, end);
        else
            m_at = end;
    }

    QStringView m_code;
    const CodeLanguage &m_language;
    QList<QStringView> m_keywords;
    QList<QStringView> m_lineComments;
    QList<CodeHighlighter::Span> m_spans;
    qsizetype m_at = 0;
    bool m_lineBegins = true;
    bool m_inTag = false;
};

} // namespace

QList<CodeHighlighter::Span> CodeHighlighter::spans(QStringView code, QStringView language) {
    const CodeLanguage *known = CodeLanguage::called(language);
    return known ? Scanner(code.left(longest), *known).scan() : QList<Span>();
}

} // namespace lmp
