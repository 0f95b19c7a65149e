#include "OfflineReply.h"

#include "ChineseText.h"

#include <algorithm>

namespace lmp::sandbox {

OfflineReply::OfflineReply(std::string_view text, std::chrono::milliseconds pace, const StopSignal &stop)
    : m_pieces(streamPieces(text))
    , m_pace(pace)
    , m_stop(stop) {}

ReplySource::Piece OfflineReply::next(std::chrono::milliseconds patience) {
    if (m_at == m_pieces.size())
        return {Piece::Kind::finished, {}};
    // However slow the pace, whoever pulls gets a chance to notice that nobody reads any more.
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_due - std::chrono::steady_clock::now());
    if (left.count() > 0 && m_stop.wait(std::min(left, patience)))
        return {Piece::Kind::failed, {}};
    if (left > patience)
        return {Piece::Kind::waiting, {}};
    m_due = std::chrono::steady_clock::now() + m_pace;
    return {Piece::Kind::text, m_pieces[m_at++]};
}

} // namespace lmp::sandbox
