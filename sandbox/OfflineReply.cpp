#include "OfflineReply.h"

#include "ChineseText.h"

namespace lmp::sandbox {

OfflineReply::OfflineReply(std::string_view text, std::chrono::milliseconds pace, const StopSignal &stop)
    : m_pieces(streamPieces(text))
    , m_pace(pace)
    , m_stop(stop) {}

ReplySource::Piece OfflineReply::next(std::chrono::milliseconds) {
    if (m_at == m_pieces.size())
        return {Piece::Kind::finished, {}};
    if (m_at > 0 && m_pace.count() > 0 && m_stop.wait(m_pace))
        return {Piece::Kind::failed, {}};
    return {Piece::Kind::text, m_pieces[m_at++]};
}

} // namespace lmp::sandbox
