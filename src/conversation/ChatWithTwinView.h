#pragma once

#include "conversation/ChatStreamFrame.h"
#include "conversation/ConversationSendScope.h"
#include "conversation/ConversationSession.h"
#include "conversation/RelayChatResponse.h"
#include "conversation/TurnOutcome.h"
#include "core/SSEClient.h"
#include "identity/SafetyGateStore.h"

#include <QPointer>
#include <QVariantMap>

namespace lmp {

/// The chat with one's twin: one turn at a time, from the input to a reply that is known, refused or not known.
///
/// Owned by the screen or the terminal that shows the chat; the session and the gate outlive it. UI thread. A turn that
/// may have been charged is never sent again by itself, and what arrives for a turn that is no longer the current one
/// is dropped. Failures are sentences in `errorText` and in the turn's outcome.
///
/// Signals are the last thing a step does; a slot may stop the turn, open another conversation or delete the view.
class ChatWithTwinView : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool sending READ sending NOTIFY stateChanged)
    Q_PROPERTY(bool awaitingReply READ awaitingReply NOTIFY stateChanged)
public:
    /// Where stability events go.
    using Recorder = std::function<void(const QString &event, const QString &subjectType, const QString &subjectId,
                                        const QVariantMap &props)>;
    using Reference = ConversationMessageDelivery::Reference;
    /// What else is under way on the screen, and holds an input back.
    struct Elsewhere {
        bool call = false;
        bool creation = false;
    };

    ChatWithTwinView(ConversationSession &session, SafetyGateStore &safety, APIClient api, SSEClient events,
                     Recorder recorder, QObject *parent = nullptr);
    ~ChatWithTwinView() override;

    // What the opening screen says of this chat; read when a turn starts.
    QString surface;                  ///< passed through
    std::optional<QString> companion; ///< the companion character
    bool cheaperMode = false;         ///< shorter replies
    Elsewhere elsewhere;

    /// Starts a turn: the message is in the conversation, pending, when this returns.
    /// @return the reference of the message, or the sentence that says why nothing was submitted; the input then stays
    /// in its box
    std::expected<Reference, QString> send(const QString &text,
                                           ConversationSendScope scope = ConversationSendScope::discussion);
    /// Ends the turn under way at once: the text stays, and what became of it is unknown.
    void stop();

    bool sending() const { return m_turn != nullptr; }
    bool awaitingReply() const { return m_turn != nullptr; }
    std::optional<Reference> activeSend() const;
    const std::optional<QString> &errorText() const { return m_errorText; }
    std::optional<qint64> lastCharge() const { return m_lastCharge; } ///< Pip of the last turn
    std::optional<qint64> balance() const { return m_balance; }       ///< Pip
    const std::optional<QList<UsedMemory>> &showUsed() const { return m_showUsed; }

    /// Opens the sheet of the memories that a reply drew on, if it drew on any.
    void openUsed(const QString &messageId);
    void closeUsed();

Q_SIGNALS:
    /// Any of the state above.
    void stateChanged();
    void turnStarted(const QString &conversationId, const QString &messageId);
    /// The next piece of the reply, as soon as it is there.
    void deltaReceived(const QString &text);
    void memoriesReceived(const QList<lmp::UsedMemory> &used);
    /// Exactly one of these ends a turn, after its state is in the conversation and before it is saved; a turn that is
    /// no longer current ends with neither.
    void turnCompleted(const lmp::TurnOutcome &outcome);
    void turnFailed(const lmp::TurnOutcome &outcome);

private:
    struct Turn;

    QCoro::Task<> run(std::shared_ptr<Turn> turn);
    QCoro::Task<> runPlain(std::shared_ptr<Turn> turn);
    bool isCurrent(const std::shared_ptr<Turn> &turn) const;
    void abandon();

    ConversationSession &m_session;
    SafetyGateStore &m_safety;
    APIClient m_api;
    SSEClient m_events;
    Recorder m_recorder;

    std::shared_ptr<Turn> m_turn; ///< the one under way
    std::optional<QString> m_errorText;
    std::optional<qint64> m_lastCharge;
    std::optional<qint64> m_balance;
    std::optional<QList<UsedMemory>> m_showUsed;
};

} // namespace lmp
