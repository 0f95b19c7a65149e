#pragma once

#include "conversation/ConversationRetryState.h"
#include "conversation/ConversationSession.h"
#include "conversation/RetryOutcome.h"

#include <QSet>

namespace lmp {

/// Asks the service for another answer to a message, one at a time, and puts it into the conversation.
///
/// Part of the chat; the session outlives it. UI thread. A failed retry never costs the old reply or the input, and is
/// never repeated by itself. After one whose end is not known the message is not asked about again until the
/// conversation has been read anew.
class TwinReplyRetry : public QObject {
    Q_OBJECT
public:
    explicit TwinReplyRetry(ConversationSession &session, QObject *parent = nullptr);

    const ConversationRetryState &state() const { return m_state; }
    bool isRunning() const { return m_state.active.has_value(); }

    /// @return the sentence that says why not, or none when it is under way
    std::optional<QString> startForReply(const QString &twinMessageId);
    std::optional<QString> startForMessage(const QString &userMessageId, std::optional<QString> editedInput);
    /// Forgets the retry under way; its answer will be dropped.
    void abandon();

Q_SIGNALS:
    void stateChanged();
    void ended(const lmp::RetryOutcome &outcome);

private:
    std::optional<QString> start(const ConvMessageDTO &target, const QString &sourceTwinId,
                                 std::optional<QString> editedInput);
    QCoro::Task<> run(ConversationRetryState::Operation operation, RetryReq request, ConversationDTO before);
    /// Applies the answer if everything is still as it was. @return the sentence shown when it is not
    QString apply(const ConversationRetryState::Operation &operation, const RetryReq &request,
                  const ConversationDTO &before, const RetryResp &answer);
    void end(const RetryOutcome &outcome);

    ConversationSession &m_session;
    ConversationRetryState m_state;
    QSet<QString> m_unconfirmed; ///< the user messages of the open conversation that may have been answered
};

} // namespace lmp
