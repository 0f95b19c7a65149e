#include "core/SSEParser.h"

#include <cstring>
#include <utility>

namespace lmp {

using namespace Qt::StringLiterals;

bool SSEParser::feed(QByteArrayView bytes, std::vector<SSEEvent> &events) {
    const char *at = bytes.data();
    const char *const end = at + bytes.size();
    while (!m_broken && at != end) {
        const auto *feed = static_cast<const char *>(std::memchr(at, '\n', size_t(end - at)));
        const QByteArrayView piece(at, feed ? feed : end);
        if (piece.size() > m_limits.line - m_partial.size()) {
            m_broken = true;
        } else if (!feed) {
            m_partial.append(piece);
            break;
        } else if (m_partial.isEmpty()) {
            m_broken = !takeLine(piece, events);
        } else {
            m_partial.append(piece);
            const QByteArray line = std::exchange(m_partial, {});
            m_broken = !takeLine(line, events);
        }
        at += piece.size() + 1;
    }
    return !m_broken;
}

bool SSEParser::finish(std::vector<SSEEvent> &events) {
    if (m_broken)
        return false;
    if (const QByteArray line = std::exchange(m_partial, {}); !line.isEmpty())
        m_broken = !takeLine(line, events);
    if (!m_broken)
        dispatch(events);
    return !m_broken;
}

bool SSEParser::takeLine(QByteArrayView line, std::vector<SSEEvent> &events) {
    if (std::exchange(m_first, false) && line.startsWith("\xef\xbb\xbf"))
        line = line.sliced(3);
    if (line.endsWith('\r'))
        line.chop(1);
    if (line.isEmpty()) {
        dispatch(events);
        return true;
    }
    // A comment is the field without a name, and goes the way of every unknown field.
    const auto colon = line.indexOf(':');
    const QByteArrayView field = colon < 0 ? line : line.first(colon);
    QByteArrayView value = colon < 0 ? QByteArrayView() : line.sliced(colon + 1);
    if (value.startsWith(' '))
        value = value.sliced(1);
    if (field == "data")
        return takeData(value);
    if (field == "event")
        m_event = QString::fromUtf8(value);
    return true;
}

bool SSEParser::takeData(QByteArrayView value) {
    const bool joined = std::exchange(m_collected, true);
    if (value.size() > m_limits.data - m_data.size() - (joined ? 1 : 0))
        return false;
    if (!joined) {
        m_data = value.toByteArray();
    } else {
        m_data += '\n';
        m_data += value;
    }
    return true;
}

void SSEParser::dispatch(std::vector<SSEEvent> &events) {
    QString name = std::exchange(m_event, {});
    if (!std::exchange(m_collected, false))
        return;
    events.push_back({name.isEmpty() ? u"message"_s : std::move(name), std::exchange(m_data, {})});
}

} // namespace lmp
