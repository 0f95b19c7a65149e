#include "dev/StderrTail.h"

#include "core/Graphemes.h"

namespace lmp {

namespace {

/// Characters of up to 32 bytes each fit, families of emoji included.
constexpr qsizetype keptBytes = 32 * StderrTail::maxCharacters;

constexpr char escape = '\x1b';
constexpr char bell = '\a';

} // namespace

void StderrTail::feed(QByteArrayView bytes) {
    for (const char byte : bytes)
        feedByte(byte);
    if (m_bytes.size() > 2 * keptBytes)
        m_bytes = m_bytes.last(keptBytes);
}

void StderrTail::feedByte(char byte) {
    switch (m_state) {
    case State::Text:
        return feedText(byte);
    case State::Escape:
        if (byte == '[')
            m_state = State::Control;
        else if (byte == ']' || byte == 'P' || byte == '_' || byte == '^' || byte == 'X')
            m_state = State::String;
        else if (byte < ' ' || byte > '/') // else a longer escape goes on
            m_state = State::Text;
        return;
    case State::Control:
        if (byte >= ' ' && byte <= '?')
            return;
        m_state = State::Text;
        if (byte < '@' || byte > '~')
            feedText(byte);
        return;
    case State::String:
        // A line feed too: a terminator that never comes must not swallow all that follows.
        if (byte == bell || byte == '\n')
            m_state = State::Text;
        else if (byte == escape)
            m_state = State::Escape;
        return;
    }
}

void StderrTail::feedText(char byte) {
    if (byte == escape)
        m_state = State::Escape;
    else if (static_cast<unsigned char>(byte) >= ' ' ? byte != '\x7f' : byte == '\n' || byte == '\t' || byte == '\r')
        m_bytes += byte;
}

QString StderrTail::text() const {
    return Graphemes::last(QString::fromUtf8(m_bytes), maxCharacters);
}

} // namespace lmp
