// One turn of chat on either route: what it costs, what the twin says, and what becomes true when it completes. Used by
// the one thread that serves the request. Nothing is charged or remembered unless complete() runs.
#pragma once
#include "TurnRequest.h"
#include "TwinVoice.h"
#include <optional>

namespace lmp::sandbox {

struct SandboxServices;

class RelayTurn {
public:
    /// Throws SandboxFailure 402 when the account cannot pay. `services` must outlive the turn.
    RelayTurn(SandboxServices &services, std::string userId, TurnRequest request);

    /// Starts the reply; throws SandboxFailure 502 when the model fails before its first text.
    std::unique_ptr<ReplySource> start(bool paced);
    /// Charges the turn, keeps what the user said about themselves and notes the time; once, whatever is called when.
    /// Returns the charge as the closing frame has it: pipCharged, balance, requestId, and continuousUse when due.
    const boost::json::object &complete();
    /// The same keys for a turn that is not charged.
    boost::json::object uncharged();

    const std::optional<boost::json::object> &safety() const { return m_safety; }
    /// As {"content", "truth"}; known once the reply was started.
    const boost::json::array &usedMemories() const { return m_used; }

private:
    /// What the user said about themselves, and the time spent talking.
    void keepTrimmings();

    SandboxServices &m_services;
    std::string m_userId;
    TurnRequest m_request;
    std::string m_requestId;
    TwinContext m_context;
    std::optional<boost::json::object> m_safety;
    boost::json::array m_used;
    std::optional<boost::json::object> m_receipt;
};

} // namespace lmp::sandbox
