#pragma once

#include "conversation/RetryOutcome.h"
#include "screens/chat/ComposerInputs.h"
#include "screens/chat/MessageListModel.h"

namespace lmp {

/// Asking for another answer in a window's chat: to a reply, to a failed message, or to one that is edited in the input
/// box first.
///
/// Part of the chat's model, whose other parts outlive it. UI thread. Why not, and what came of it, is told in the
/// message's own row; what concerns the input box is `held`.
class ChatRetry : public QObject {
    Q_OBJECT
public:
    ChatRetry(ConversationSession &session, ChatWithTwinView &view, MessageListModel &messages, ComposerInputs &inputs);

    /// The failed message that sending tries again; empty when sending says something new.
    QString target() const { return m_inputs.current().retryMessageId.value_or(QString()); }
    /// Another answer to what a reply answered, or to a message. @return false when nothing is under way
    bool ask(const QString &messageId);
    /// Sends a failed message again. An edited text goes by way of the input box, so that it cannot be lost.
    bool askEdited(const QString &userMessageId, const QString &edited);
    /// Puts a failed message into the input box. @return false when the box is occupied
    bool restore(const QString &userMessageId);
    /// Tries the target again with what stands in the input box.
    bool send();
    /// Sending says something new again; the text stays, and what waited to be sent with it does not go.
    void clearTarget();
    /// What stands in the input box was changed: what waits to be sent with it waits no longer.
    void onEdited();
    /// Clears a target that cannot be tried again.
    void dropStale();

    /// Another conversation is open.
    void onOpened();
    /// A save has ended: what waited for it goes on.
    void onSaveEnded();

Q_SIGNALS:
    void inputChanged();
    /// Why the input was not submitted.
    void held(const QString &reason);
    void sent();
    /// What stands in the input box has been answered.
    void answered();

private:
    /// A message to try again as soon as the service has it.
    struct Waiting {
        QString messageId;
        std::optional<QString> input; ///< what it is to be sent with, when that is the input
    };

    const ConvMessageDTO *messageOf(const QString &id) const;
    bool waitsForSave(const Waiting &waiting);
    void stopWaiting();
    bool started(const QString &row, const std::optional<QString> &refusal);
    void onEnded(const RetryOutcome &outcome);

    ConversationSession &m_session;
    ChatWithTwinView &m_view;
    MessageListModel &m_messages;
    ComposerInputs &m_inputs;
    std::optional<Waiting> m_waiting;
    QString m_row;                  ///< whose retry is under way
    std::optional<QString> m_input; ///< what it was sent with, when that is the input
};

} // namespace lmp
