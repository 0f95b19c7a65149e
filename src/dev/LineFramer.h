#pragma once

#include <QByteArray>

#include <span>

namespace lmp {

/// Cuts the bytes of a child's output into batches of whole lines, however they arrive; knows no I/O.
///
/// A value for one thread and one stream. A batch is one block of memory that holds lines, each ending in its line
/// feed; it is the block that was read into wherever that is possible, since a copy of every line would cost more than
/// reading it. Lines that are not valid UTF-8 are dropped. A line beyond the limit breaks the framer for good; what
/// came before it has been handed out.
class LineFramer {
public:
    static constexpr qsizetype maxLine = 64 * 1024 * 1024;

    /// @param limit the longest line, in bytes without its line feed
    explicit LineFramer(qsizetype limit = maxLine)
        : m_limit(limit) {}

    /// Where the next bytes are to be put. Valid until the next call.
    std::span<char> room();
    /// The first `count` bytes of `room()` have been put there.
    /// @return the lines that are whole now, or an empty array
    QByteArray take(qsizetype count);
    /// The same in one call, for bytes that lie elsewhere.
    QByteArray feed(QByteArrayView bytes);
    /// The end of the stream: what is left is the last line. Its line feed is added.
    QByteArray finish();

    /// A line was too long; nothing more is taken.
    bool isBroken() const { return m_broken; }

private:
    QByteArray cut(qsizetype end);
    qsizetype enforceLimit();

    qsizetype m_limit;
    QByteArray m_block;   ///< its size is its room; the bytes before m_used are read
    qsizetype m_used = 0; ///< of them none is a line feed
    bool m_broken = false;
};

} // namespace lmp
