#pragma once

#include "app/LocalInputRegistry.h"
#include "screens/chat/ChatFind.h"
#include "screens/chat/ChatRetry.h"
#include "screens/chat/ChatServices.h"
#include "screens/chat/ComposerInputs.h"
#include "screens/chat/ExtractionModel.h"
#include "screens/chat/MessageDeeds.h"
#include "screens/chat/MessageListModel.h"
#include "screens/chat/SpeechModel.h"
#include "screens/chat/StopNote.h"

namespace lmp {

/// The chat with one's twin as a window shows it: the open conversation, the turn under way, what is typed, and every
/// sentence that says how things stand.
///
/// One for each window, owned by its scene; the application outlives it. UI thread. Nothing fails outwards: failures
/// are texts here and in `messages`. When somebody else is signed in, what is open is put away and closed.
class ChatModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the window's scene")
    Q_PROPERTY(lmp::MessageListModel *messages READ messages CONSTANT)
    Q_PROPERTY(lmp::MessageDeeds *deeds READ deeds CONSTANT)
    /// How what is typed stands with the disk.
    Q_PROPERTY(lmp::ComposerInputs *inputs READ inputs CONSTANT)
    Q_PROPERTY(lmp::ChatFind *find READ find CONSTANT)
    Q_PROPERTY(lmp::SpeechModel *speech READ speech CONSTANT)
    Q_PROPERTY(lmp::ExtractionModel *extraction READ extraction CONSTANT)

    // The conversation.
    Q_PROPERTY(QString conversationId READ conversationId NOTIFY conversationChanged)
    Q_PROPERTY(QString title READ title NOTIFY conversationChanged)
    Q_PROPERTY(bool open READ isOpen NOTIFY conversationChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY conversationChanged)
    /// Why the conversation is not open; `reload` is the action.
    Q_PROPERTY(QString loadError READ loadError NOTIFY conversationChanged)
    Q_PROPERTY(bool incognito READ incognito NOTIFY conversationChanged)
    Q_PROPERTY(QString incognitoText READ incognitoText CONSTANT)
    /// The service's copy has moved on; `openServiceCopy` gives up the local one.
    Q_PROPERTY(bool conflicted READ conflicted NOTIFY conversationChanged)
    /// Something newer stands in the way of saving what is open; `saveAsNew` gets around it and loses neither.
    Q_PROPERTY(bool blocked READ blocked NOTIFY conversationChanged)
    /// What is open is with this machine alone, and nothing is under way that would change that.
    Q_PROPERTY(bool localOnly READ localOnly NOTIFY conversationChanged)
    /// What became of the last save, while it is not with the service; `saveAgain` is the action.
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)

    // The turn.
    Q_PROPERTY(bool sending READ sending NOTIFY stateChanged)
    Q_PROPERTY(bool awaitingReply READ awaitingReply NOTIFY stateChanged)
    Q_PROPERTY(bool retrying READ retrying NOTIFY stateChanged)
    /// Neither a turn nor a retry is under way.
    Q_PROPERTY(bool idle READ isIdle NOTIFY stateChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY stateChanged)
    Q_PROPERTY(QString balanceText READ balanceText NOTIFY stateChanged)
    Q_PROPERTY(QString lastChargeText READ lastChargeText NOTIFY stateChanged)
    Q_PROPERTY(bool cheaperMode READ cheaperMode WRITE setCheaperMode NOTIFY stateChanged)

    // The input.
    Q_PROPERTY(QString input READ input WRITE setInput NOTIFY inputChanged)
    Q_PROPERTY(bool canSend READ canSend NOTIFY inputChanged)
    /// Why the input was not submitted; it is still in its box.
    Q_PROPERTY(QString inputHeldReason READ inputHeldReason NOTIFY inputChanged)
    /// The failed message that sending tries again; empty when sending says something new.
    Q_PROPERTY(QString retryTarget READ retryTarget NOTIFY inputChanged)
    Q_PROPERTY(QString retryTargetText READ retryTargetText NOTIFY inputChanged)
public:
    explicit ChatModel(Application &application, QObject *parent = nullptr);
    explicit ChatModel(ChatServices services, QObject *parent = nullptr);
    ~ChatModel() override;

    MessageListModel *messages() { return &m_messages; }
    MessageDeeds *deeds() { return &m_deeds; }
    ComposerInputs *inputs() { return &m_inputs; }
    ChatFind *find() { return &m_find; }
    SpeechModel *speech() { return &m_speech; }
    ExtractionModel *extraction() { return &m_extraction; }
    QString conversationId() const;
    QString title() const;
    bool isOpen() const { return m_session.isActive(); }
    bool loading() const { return m_loading; }
    const QString &loadError() const { return m_loadError; }
    bool incognito() const { return m_session.incognito(); }
    QString incognitoText() const;
    /// Whether leaving what is open puts away words that nobody keeps: ask first.
    Q_INVOKABLE bool losesIncognito() const;
    bool conflicted() const { return m_session.conflicted(); }
    bool blocked() const { return m_session.conflicted() || m_session.draftChangedElsewhere(); }
    bool localOnly() const { return m_session.unsaved() && !m_session.isSaving() && isIdle(); }
    /// Whether the service has never told of a revision of what is open.
    bool neverAtService() const;
    QString notice() const;
    bool sending() const { return m_view.sending(); }
    bool awaitingReply() const { return m_view.awaitingReply(); }
    bool retrying() const { return m_view.retry().isRunning(); }
    bool isIdle() const { return !sending() && !retrying(); }
    QString errorText() const;
    QString balanceText() const;
    QString lastChargeText() const;
    bool cheaperMode() const { return m_view.cheaperMode; }
    void setCheaperMode(bool cheaper);
    QString input() const;
    void setInput(const QString &text);
    bool canSend() const;
    const QString &inputHeldReason() const { return m_heldReason; }
    QString retryTarget() const { return m_retry.target(); }
    QString retryTargetText() const;

    /// Opens a fresh conversation. One that is open and still empty stays.
    Q_INVOKABLE void begin(bool incognito = false);
    /// At the start: opens the conversation in which was typed last and not sent, a fresh one where there is none.
    void goOn();
    /// Opens a conversation of the service, or a fresh one with what was typed for `id` where there is no conversation
    /// to it. One that is open already stays.
    Q_INVOKABLE void load(const QString &id);
    /// Opens a conversation at one of its messages, with what it was found by marked.
    void loadAt(const QString &id, const QString &messageId, const QString &query);
    /// Tries once more to open what `loadError` speaks of.
    Q_INVOKABLE void reload();
    /// Reads what is open from the service again, to see what became of it there. What is not saved stays.
    Q_INVOKABLE void reopen();
    /// Opens the service's copy; the local changes are given up, so only at the person's own word.
    Q_INVOKABLE void openServiceCopy();
    Q_INVOKABLE void saveAgain();
    /// Goes on with what is open, and what is typed, as a conversation of its own. Not while a turn is under way.
    Q_INVOKABLE void saveAsNew();
    Q_INVOKABLE void closeNotice();

    /// Submits the input, or tries the `retryTarget` again with it. The model empties the input itself: when the turn
    /// has begun, or when the retry has succeeded.
    /// @return false when nothing was submitted; `inputHeldReason` says why
    Q_INVOKABLE bool send();
    Q_INVOKABLE void stop();
    /// Another answer to what a reply answered. Why not is told in the reply's own row.
    Q_INVOKABLE bool retryReply(const QString &twinMessageId) { return m_retry.ask(twinMessageId); }
    /// Sends a failed message again. An edited text goes by way of the input box, so that it cannot be lost.
    Q_INVOKABLE bool retryMessage(const QString &userMessageId, const QString &edited = {});
    /// Puts a failed message into the input box, to be edited and tried again. @return false when the box is occupied
    Q_INVOKABLE bool restoreMessage(const QString &userMessageId) { return m_retry.restore(userMessageId); }
    /// Sending says something new again; the text stays.
    Q_INVOKABLE void clearRetryTarget() { m_retry.clearTarget(); }

    /// Whether everything typed is on disk or with the service.
    Q_INVOKABLE bool localInputSaved() const;
    /// Puts on disk what is unsaved and unsent. @return false when something could be lost
    QCoro::Task<bool> preserve();
    /// To be called when somebody else may be signed in.
    void recheckAccount();

Q_SIGNALS:
    void conversationChanged();
    /// What is typed from now on is for another conversation: a composition under way belongs to this one.
    void leaving();
    void stateChanged();
    void inputChanged();
    void noticeChanged();
    /// A turn has begun with what was typed.
    void sent();
    /// What the list of conversations shows may have changed: at the service, or on this machine alone.
    void saved();
    void draftsChanged();

private:
    void openAs(const QString &id, ConversationSession::Copy copy);
    QCoro::Task<> load(QString id, ConversationSession::Copy copy, quint64 loads);
    void letGo();
    void beginWith(const QString &id);
    void goOnTyping();
    void forgetOpening();
    ComposerInputs::Place place() const;
    void hold(const QString &reason);
    void setNotice(const QString &notice);
    void onOpened();
    void onViewChanged();
    void onTurnEnded(const TurnOutcome &outcome);
    void onSaveEnded(const ConversationSession::Saved &saved);
    void onSecured(const QString &conversationId, quint64 edits);
    void onRefused();
    void onLeft();
    void emptyBox();

    ChatServices m_services;
    ConversationSession m_session;
    ChatWithTwinView m_view;
    MessageListModel m_messages;
    MessageDeeds m_deeds;
    ChatFind m_find;
    SpeechModel m_speech;
    ExtractionModel m_extraction;
    ComposerInputs m_inputs;
    ChatRetry m_retry;
    StopNote m_stopNote;
    LocalInputRegistry::Registration m_localInput;
    /// An input that was sent, until its message is on disk or with the service.
    struct Sent {
        QString box, conversation;
        quint64 edits = 0;
    };
    QList<Sent> m_sent;
    QString m_owner;                    ///< the account and sign-in that what is open is of
    std::optional<QString> m_user;      ///< the account of these
    QString m_signIn;                   ///< the sign-in of these
    QString m_wantedId;                 ///< of a conversation that is being opened, or could not be
    quint64 m_loads = 0;                ///< counts what was asked for
    std::function<void()> m_whenOpened; ///< goes to the message that was asked for
    bool m_loading = false;
    bool m_goesOn = false; ///< as soon as the disk has told where something was typed
    QString m_loadError;
    QString m_notice;
    QString m_leftNotice; ///< about conversations that are not open any more
    QString m_heldReason;
};

} // namespace lmp
