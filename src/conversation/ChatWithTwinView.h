#pragma once

#include "conversation/ConversationSendScope.h"
#include "conversation/ConversationSession.h"
#include "conversation/FeedbackReq.h"
#include "conversation/OkResp.h"
#include "conversation/TurnOutcome.h"
#include "conversation/TwinReplyRetry.h"
#include "core/SSEClient.h"
#include "identity/SafetyGateStore.h"

#include <QVariantMap>

#include <memory>

namespace lmp {

struct ChatStreamFrame;
struct ChatTurn;

/// The chat with one's twin: one turn at a time, from the input to a reply that is known, refused or not known.
///
/// Owned by the screen or the terminal that shows the chat; the session and the gate outlive it. UI thread. A turn that
/// may have been charged is never sent again by itself, and what arrives for a turn that is no longer the current one
/// is dropped. Failures are sentences in `errorText` and in the turn's outcome.
///
/// Signals are the last thing a step does: a slot may stop the turn, open another conversation or delete the view.
class ChatWithTwinView : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool sending READ sending NOTIFY stateChanged)
    Q_PROPERTY(bool awaitingReply READ awaitingReply NOTIFY stateChanged)
public:
    using Reference = ConversationMessageDelivery::Reference;
    /// Where product and stability events go.
    using Recorder = std::function<void(const QString &event, const QString &subjectType, const QString &subjectId,
                                        const QVariantMap &props)>;
    using FeedbackReq = lmp::FeedbackReq;
    using OkResp = lmp::OkResp;
    /// What else is under way on the screen, and holds an input back.
    struct Elsewhere {
        bool call = false;
        bool creation = false;
    };

    ChatWithTwinView(ConversationSession &session, SafetyGateStore &safety, APIClient api, SSEClient events,
                     Recorder recorder, QObject *parent = nullptr);
    ~ChatWithTwinView() override;

    // What the opening screen says of this chat; read when a turn starts.
    QString surface;
    std::optional<QString> companion; ///< the companion character
    bool cheaperMode = false;         ///< shorter replies
    Elsewhere elsewhere;

    /// Starts a turn: the message is in the conversation, pending, when this returns.
    /// @return its reference, or the sentence that says why nothing was submitted; the input then stays in its box
    std::expected<Reference, QString> send(const QString &text,
                                           ConversationSendScope scope = ConversationSendScope::discussion);
    /// Lets go of a turn that is no longer the current one; to be called when somebody else is signed in, since a
    /// stream that is silent finds out only with its next event.
    void recheck();
    /// The session has learned whose the open conversation is: the turn under way goes on.
    void knowOwner();
    /// Ends the turn under way at once: the text stays, and what became of it is unknown.
    void stop();

    bool sending() const { return m_turn != nullptr; }
    bool awaitingReply() const { return m_turn != nullptr; }
    std::optional<Reference> activeSend() const;
    const std::optional<QString> &errorText() const { return m_errorText; }
    /// Pip, of the last turn; none when it, or what was asked for since, cost nobody knows what.
    std::optional<qint64> lastCharge() const { return m_lastCharge; }
    std::optional<qint64> balance() const { return m_balance; } ///< Pip; none likewise
    const std::optional<QList<UsedMemory>> &showUsed() const { return m_showUsed; }
    const QMap<QString, QString> &feedback() const { return m_feedback; } ///< polarity by message id
    const std::optional<QString> &reasonsOpenFor() const { return m_reasonsOpenFor; }
    /// The sheet of the memories that a reply drew on, if it drew on any.
    void openUsed(const QString &messageId);
    void closeUsed();

    /// The reasons of a dislike, in the order in which they are offered; any other is not sent.
    static QStringList feedbackReasons();
    void likeReply(const QString &messageId);
    void openReasons(const QString &messageId);
    void closeReasons();
    void dislikeReply(const QString &messageId, const QString &reason);
    /// The retry of a reply or of a failed message; it and a turn exclude each other.
    const TwinReplyRetry &retry() const { return m_retry; }
    /// Asks for another answer to the message that a reply answered, or to a failed message, edited or as it was.
    /// @return the sentence that says why not, or none when the retry is under way
    std::optional<QString> retryReply(const QString &twinMessageId);
    std::optional<QString> retryMessage(const QString &userMessageId, std::optional<QString> editedInput = {});

Q_SIGNALS:
    /// Any of the state above.
    void stateChanged();
    void turnStarted(const QString &conversationId, const QString &messageId);
    /// The next piece of the reply, as soon as it is there.
    void deltaReceived(const QString &text);
    void memoriesReceived(const QList<lmp::UsedMemory> &used);
    /// Exactly one of these three ends a turn. After the first two its state is in the conversation and its save begun
    /// (the session's `saveEnded` comes later); an abandoned one is no longer the current one and has written nothing.
    void turnCompleted(const lmp::TurnOutcome &outcome);
    void turnFailed(const lmp::TurnOutcome &outcome);
    void turnAbandoned();
    void retryEnded(const lmp::RetryOutcome &outcome);

private:
    using TurnPtr = std::shared_ptr<ChatTurn>;
    enum class Step { More, Done, Aborted };

    std::optional<QString> refusal(const QString &text, ConversationSendScope scope) const;
    QCoro::Task<> run(TurnPtr turn);
    QCoro::Task<> runPlain(TurnPtr turn);
    /// Whether the turn may still write; one that may not is let go of.
    bool isCurrent(const TurnPtr &turn);
    Step take(const TurnPtr &turn, const QByteArray &data);
    /// Takes over what a frame, or a whole answer, says.
    void absorb(const TurnPtr &turn, const ChatStreamFrame &frame);
    void grow(const TurnPtr &turn, const QString &delta);
    void failStream(const TurnPtr &turn, const APIError &error);
    void complete(const TurnPtr &turn);
    void conclude(const TurnPtr &turn, TurnOutcome outcome);
    void letGo();
    void release();
    void onOpened();
    void onRetryEnded(const RetryOutcome &outcome);
    void choose(FeedbackReq request, const QString &event);
    QCoro::Task<> postFeedback(FeedbackReq request);

    ConversationSession &m_session;
    SafetyGateStore &m_safety;
    APIClient m_api;
    SSEClient m_events;
    Recorder m_recorder;
    TwinReplyRetry m_retry;

    TurnPtr m_turn; ///< the one under way
    std::optional<QString> m_errorText;
    std::optional<qint64> m_lastCharge;
    std::optional<qint64> m_balance;
    QString m_balanceAccount; ///< whose balance that is
    std::optional<QList<UsedMemory>> m_showUsed;
    QMap<QString, QString> m_feedback;
    std::optional<QString> m_reasonsOpenFor;
};

} // namespace lmp
