// Produces the event stream of one turn: safety first, the reply in deltas, the memories used, then the closing frame,
// charged the moment before it is sent. A reader that leaves earlier is not charged. Faults bend exactly this sequence.
// Used by the request's thread only; holds its seat until it is destroyed.
#pragma once
#include "ByteSink.h"
#include "FaultRule.h"
#include "RelayTurn.h"
#include "StopSignal.h"

namespace lmp::sandbox {

class RelayStream {
public:
    enum class Step {
        more,     ///< call again
        finished, ///< the stream ends in good order
        broken,   ///< the connection is to be closed as it is
    };

    RelayStream(std::unique_ptr<RelayTurn> turn, std::unique_ptr<ReplySource> source, std::shared_ptr<void> slot,
                std::optional<FaultRule> fault, const StopSignal &stop);

    /// Sends at most one event; returns within about a quarter of a second when there is none.
    Step advance(const ByteSink &sink);

private:
    enum class Stage { safety, reply, memories, closing };

    std::optional<Step> disturbed(const ByteSink &sink);
    Step stall(const ByteSink &sink) const;
    Step spoil(const ByteSink &sink, std::string_view bytes);
    Step sendReply(const ByteSink &sink);
    Step sendClosing(const ByteSink &sink);
    Step send(const ByteSink &sink, const boost::json::object &frame);
    Step write(const ByteSink &sink, std::string_view bytes);
    Step abort(const ByteSink &sink);

    std::unique_ptr<RelayTurn> m_turn;
    std::unique_ptr<ReplySource> m_source;
    std::shared_ptr<void> m_slot;
    std::optional<FaultRule> m_fault;
    const StopSignal &m_stop;
    Stage m_stage = Stage::safety;
    std::int64_t m_events = 0;
    std::int64_t m_deltas = 0;
    std::chrono::steady_clock::time_point m_lastWrite = std::chrono::steady_clock::now();
};

} // namespace lmp::sandbox
