#include "RelayStream.h"

namespace lmp::sandbox {

namespace {

constexpr std::chrono::milliseconds patience(200);
constexpr std::chrono::seconds heartbeat(10);
constexpr std::int64_t deltasBeforeAbort = 2;
/// Neither an event stream nor text: a bad lead byte, a torn character, braces that never close.
constexpr std::string_view garbage("\xFF\xFE\x00{\"delta\":[[[[\xE4\xBD\r\ndata: {not json\n\ndata: \xC3\x28\n\n", 47);

} // namespace

RelayStream::RelayStream(std::unique_ptr<RelayTurn> turn, std::unique_ptr<ReplySource> source,
                         std::shared_ptr<void> slot, std::optional<FaultRule> fault, const StopSignal &stop)
    : m_turn(std::move(turn))
    , m_source(std::move(source))
    , m_slot(std::move(slot))
    , m_fault(std::move(fault))
    , m_stop(stop) {}

RelayStream::Step RelayStream::advance(const ByteSink &sink) {
    if (m_stop.stopped() || !sink.writable())
        return Step::broken;
    if (const auto step = disturbed(sink))
        return *step;
    switch (m_stage) {
    case Stage::safety:
        m_stage = Stage::reply;
        if (const auto &safety = m_turn->safety())
            return send(sink, {{"safety", *safety}});
        return Step::more;
    case Stage::reply:
        return sendReply(sink);
    case Stage::memories:
        m_stage = Stage::closing;
        return m_turn->usedMemories().empty() ? Step::more : send(sink, {{"usedMemories", m_turn->usedMemories()}});
    case Stage::closing:
        return sendClosing(sink);
    }
    return Step::broken;
}

std::optional<RelayStream::Step> RelayStream::disturbed(const ByteSink &sink) {
    if (!m_fault)
        return std::nullopt;
    const auto due = [this](const std::optional<std::int64_t> &after) {
        return after && m_events >= *after;
    };
    const bool cut = due(m_fault->cutAfterEvents);
    const bool stalls = due(m_fault->stallAfterEvents);
    const bool spoils = due(m_fault->garbageAfterEvents);
    if (!cut && !stalls && !spoils)
        return std::nullopt;
    if (m_fault->charge)
        m_turn->complete();
    return cut ? Step::broken : stalls ? stall(sink) : spoil(sink, garbage);
}

RelayStream::Step RelayStream::stall(const ByteSink &sink) const {
    // Silent, but not deaf: it ends with the reader or with the server.
    while (!m_stop.wait(std::chrono::milliseconds(50)))
        if (!sink.writable())
            break;
    return Step::broken;
}

RelayStream::Step RelayStream::spoil(const ByteSink &sink, std::string_view bytes) {
    return write(sink, bytes) == Step::more ? Step::finished : Step::broken;
}

RelayStream::Step RelayStream::sendReply(const ByteSink &sink) {
    if (m_fault && m_fault->abort && m_deltas >= deltasBeforeAbort)
        return abort(sink);
    if (m_fault && m_fault->empty) {
        m_stage = Stage::memories;
        return Step::more;
    }
    auto piece = m_source->next(patience);
    switch (piece.kind) {
    case ReplySource::Piece::Kind::text:
        ++m_deltas;
        return send(sink, {{"delta", std::move(piece.text)}});
    case ReplySource::Piece::Kind::waiting:
        // A comment keeps readers with an idle time-out patient while the model thinks.
        return std::chrono::steady_clock::now() - m_lastWrite >= heartbeat ? write(sink, ": ...\n\n") : Step::more;
    case ReplySource::Piece::Kind::finished:
        m_stage = Stage::memories;
        return Step::more;
    case ReplySource::Piece::Kind::failed:
        return abort(sink);
    }
    return Step::broken;
}

RelayStream::Step RelayStream::sendClosing(const ByteSink &sink) {
    if (m_fault && m_fault->abort)
        return abort(sink);
    if (m_fault && m_fault->noDone) {
        if (m_fault->charge)
            m_turn->complete();
        return Step::finished;
    }
    boost::json::object frame{{"done", true}};
    for (const auto &entry : m_turn->complete())
        frame[entry.key()] = entry.value();
    return send(sink, frame) == Step::more ? Step::finished : Step::broken;
}

RelayStream::Step RelayStream::abort(const ByteSink &sink) {
    if (m_fault && m_fault->charge)
        m_turn->complete();
    return send(sink, {{"error", "stream_aborted"}}) == Step::more ? Step::finished : Step::broken;
}

RelayStream::Step RelayStream::send(const ByteSink &sink, const boost::json::object &frame) {
    ++m_events;
    return write(sink, "data: " + boost::json::serialize(frame) + "\n\n");
}

RelayStream::Step RelayStream::write(const ByteSink &sink, std::string_view bytes) {
    m_lastWrite = std::chrono::steady_clock::now();
    const auto chunk = m_fault ? static_cast<std::size_t>(m_fault->chunkBytes) : 0;
    return sink.writeInPieces(bytes, chunk) ? Step::more : Step::broken;
}

} // namespace lmp::sandbox
