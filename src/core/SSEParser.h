#pragma once

#include "core/SSEEvent.h"

#include <vector>

namespace lmp {

/// Turns the bytes of a text/event-stream into events, however the bytes are cut; knows no I/O.
///
/// A value for one thread and one stream. Lines end at a line feed and one carriage return before it is dropped, as is
/// one leading byte order mark. What is kept between two feeds is bounded: a stream that breaks a limit has failed for
/// good, and the events before that point are the same wherever the bytes were cut.
class SSEParser {
public:
    struct Limits {
        qsizetype line = 16 * 1024 * 1024; ///< bytes of one line, without its line feed
        qsizetype data = 64 * 1024 * 1024; ///< bytes of one event's joined data
    };

    SSEParser()
        : SSEParser(Limits()) {}
    explicit SSEParser(Limits limits)
        : m_limits(limits) {}

    /// Appends the events that `bytes` complete.
    /// @return false once a limit is broken; nothing more is read then
    [[nodiscard]] bool feed(QByteArrayView bytes, std::vector<SSEEvent> &events);

    /// The end of the stream: an event that is still being collected counts.
    /// @return false when a limit is broken
    [[nodiscard]] bool finish(std::vector<SSEEvent> &events);

private:
    bool takeLine(QByteArrayView line, std::vector<SSEEvent> &events);
    bool takeData(QByteArrayView value);
    void dispatch(std::vector<SSEEvent> &events);

    Limits m_limits;
    QByteArray m_partial; ///< the beginning of a line whose end has not arrived
    QString m_event;
    QByteArray m_data;
    bool m_collected = false; ///< whether the current event has any data line, be it an empty one
    bool m_first = true;      ///< whether the next line is the stream's first
    bool m_broken = false;
};

} // namespace lmp
