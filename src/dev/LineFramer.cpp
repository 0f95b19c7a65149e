#include "dev/LineFramer.h"

#include <algorithm>
#include <cstring>

namespace lmp {

namespace {

/// A block as it is read into, and what must be free in it for a read to be worth its call.
constexpr qsizetype blockSize = 128 * 1024;
constexpr qsizetype minRoom = 32 * 1024;

/// `lines` without those that are not valid UTF-8.
QByteArray validLines(QByteArray lines) {
    // No character holds a line feed, so all lines are valid where the whole is.
    if (lines.isValidUtf8())
        return lines;
    QByteArray valid;
    valid.reserve(lines.size());
    for (qsizetype at = 0; at < lines.size();) {
        const qsizetype next = lines.indexOf('\n', at) + 1;
        const auto line = QByteArrayView(lines).sliced(at, next - at);
        if (line.isValidUtf8())
            valid += line;
        at = next;
    }
    return valid;
}

} // namespace

std::span<char> LineFramer::room() {
    // Doubled, so that a long line is moved a number of times that depends on the logarithm of its length.
    if (m_block.size() - m_used < minRoom)
        m_block.resize(std::max(blockSize, 2 * m_used));
    return {m_block.data() + m_used, static_cast<std::size_t>(m_block.size() - m_used)};
}

QByteArray LineFramer::take(qsizetype count) {
    if (m_broken)
        return {};
    const auto fresh = QByteArrayView(m_block).sliced(m_used, count);
    const qsizetype before = m_used;
    m_used += count;
    // Forwards first: that is what tells fast that there is none, in each part of a long line.
    const qsizetype first = fresh.indexOf('\n');
    qsizetype end = first < 0 ? 0 : before + fresh.lastIndexOf('\n') + 1;
    if (std::max(end, m_used - end) > m_limit)
        end = enforceLimit();
    return end > 0 ? validLines(cut(end)) : QByteArray();
}

/// Looks for a line that is too long and breaks the framer there.
/// @return the end of the lines before it
qsizetype LineFramer::enforceLimit() {
    qsizetype at = 0;
    for (;;) {
        const auto rest = QByteArrayView(m_block).sliced(at, m_used - at);
        const qsizetype size = rest.indexOf('\n');
        if ((size < 0 ? rest.size() : size) > m_limit) {
            m_broken = true;
            m_used = at;
            return at;
        }
        if (size < 0)
            return at;
        at += size + 1;
    }
}

/// The bytes before `end` out of the block; the rest stays.
QByteArray LineFramer::cut(qsizetype end) {
    const qsizetype rest = m_used - end;
    m_used = rest;
    if (end < blockSize / 4 && m_block.size() <= blockSize) {
        QByteArray lines(m_block.constData(), end);
        std::memmove(m_block.data(), m_block.constData() + end, static_cast<std::size_t>(rest));
        return lines;
    }
    QByteArray next(std::max(blockSize, 2 * rest), Qt::Uninitialized);
    std::memcpy(next.data(), m_block.constData() + end, static_cast<std::size_t>(rest));
    QByteArray lines = std::exchange(m_block, std::move(next));
    lines.truncate(end);
    return lines;
}

QByteArray LineFramer::feed(QByteArrayView bytes) {
    QByteArray lines;
    while (!bytes.isEmpty() && !m_broken) {
        const auto into = room();
        const auto part = bytes.first(std::min(bytes.size(), static_cast<qsizetype>(into.size())));
        std::memcpy(into.data(), part.data(), static_cast<std::size_t>(part.size()));
        lines += take(part.size());
        bytes = bytes.sliced(part.size());
    }
    return lines;
}

QByteArray LineFramer::finish() {
    return m_used > 0 && !m_broken ? feed("\n") : QByteArray();
}

} // namespace lmp
