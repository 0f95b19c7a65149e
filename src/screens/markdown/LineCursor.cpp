#include "LineCursor.h"

namespace lmp {

namespace {

constexpr int tabStop = 4;

bool isSpace(QChar c) {
    return c == u' ' || c == u'\t';
}

} // namespace

int LineCursor::indent() const {
    int column = m_column;
    for (qsizetype at = m_at; at < m_line.size() && isSpace(m_line[at]); ++at)
        column += m_line[at] == u'\t' ? tabStop - column % tabStop : 1;
    return column - m_column + m_left;
}

QChar LineCursor::first() const {
    const QStringView left = bare();
    return left.isEmpty() ? QChar() : left.front();
}

QStringView LineCursor::bare() const {
    qsizetype at = m_at;
    while (at < m_line.size() && isSpace(m_line[at]))
        ++at;
    return m_line.sliced(at);
}

QString LineCursor::rest() const {
    return QString(m_left, u' ').append(m_line.sliced(m_at));
}

void LineCursor::skip(int columns) {
    while (columns > 0) {
        if (m_left > 0) {
            const int used = std::min(m_left, columns);
            m_left -= used;
            columns -= used;
        } else if (m_at < m_line.size() && isSpace(m_line[m_at])) {
            m_left = m_line[m_at] == u'\t' ? tabStop - m_column % tabStop : 1;
            m_column += m_left;
            ++m_at;
        } else {
            return;
        }
    }
}

void LineCursor::take(qsizetype characters) {
    m_left = 0;
    skip(indent());
    const qsizetype taken = std::min(characters, m_line.size() - m_at);
    m_at += taken;
    m_column += int(taken);
}

} // namespace lmp
