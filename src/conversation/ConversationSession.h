#pragma once

#include "conversation/ConversationAccount.h"
#include "conversation/ConversationDraftCache.h"
#include "conversation/ConversationMessageDelivery.h"
#include "conversation/ConversationSaved.h"
#include "conversation/ConversationService.h"
#include "conversation/LeftConversations.h"

#include <functional>

namespace lmp {

/// The one conversation that is open, for one account: what it holds, whether the service has it, and where it is kept
/// while the service has not.
///
/// Owned by whoever shows the conversation; the clock outlives it. UI thread. Nothing that was typed is dropped: what
/// cannot be saved goes into the draft cache, also when the conversation is closed with something unsaved, and what
/// that cannot take stays in memory and is tried again. An incognito conversation is neither saved nor kept. Late
/// answers for a conversation that is no longer open are dropped.
class ConversationSession : public QObject {
    Q_OBJECT
public:
    using Saved = ConversationSaved;
    /// Which copy to open when this machine holds unsaved changes that the service's copy does not.
    enum class Copy {
        Local,   ///< the local one, marked as in conflict when the service's has moved on
        Service, ///< the service's; the local one that is open is given up, so only at the person's own word
    };

    ConversationSession(ConversationService service, ConversationDraftCache drafts, ConversationAccount account,
                        Clock &clock, QObject *parent = nullptr);
    ~ConversationSession() override;

    /// Opens a fresh conversation in place of the open one. Nothing is sent or kept before its first message.
    void begin(std::optional<QString> mode = {}, bool incognito = false);
    /// Opens a conversation of the service in place of the open one, with what this machine kept unsaved of it.
    /// Messages still pending become unknown. On failure no conversation is open.
    QCoro::Task<Result<void>> load(QString id, Copy copy = Copy::Local);
    /// Puts away what is open, and lets go of what is being opened.
    void close();

    bool isActive() const { return m_conversation.has_value(); }
    /// The open conversation, or null. Valid until control returns to the event loop.
    const ConversationDTO *conversation() const { return m_conversation ? &*m_conversation : nullptr; }
    bool incognito() const { return m_incognito; }
    /// The service holds a newer revision: nothing more is sent to it until the conversation is opened again.
    bool conflicted() const { return m_conflicted; }
    bool unsaved() const { return m_edits != m_savedEdits; }
    /// Counts what was changed in all conversations; see `secured`.
    quint64 edits() const { return m_edits; }
    /// What was left unsaved, and is not on disk yet.
    const LeftConversations &left() const { return m_left; }
    /// Why this machine's draft of the open conversation could not be read; what is open may not be all there is.
    const std::optional<QString> &draftUnread() const { return m_draftUnread; }
    /// Another window or process has written this conversation's draft, and nothing here goes over it.
    bool draftChangedElsewhere() const { return m_draftElsewhere; }
    /// Whether the service has ever had this conversation.
    bool known() const { return m_known; }
    bool isSaving() const { return m_saving; }

    const ConversationAccount &account() const { return m_account; }
    const ConversationService &service() const { return m_service; }
    /// Whether the account that the conversation was opened for is still the one signed in.
    bool belongsToCurrentAccount() const { return isActive() && m_account.key() == m_accountKey; }
    /// Whether `reference` still names a message of the open conversation of the current account.
    bool holds(const ConversationMessageDelivery::Reference &reference) const;
    ConversationMessageDelivery::Reference referenceTo(const QString &messageId) const;

    /// Only now it is known whose the open conversation is: the sign-in is the same.
    void knowOwner();

    /// Changes the open conversation; nothing happens when none is open. `changed` follows.
    void edit(const std::function<void(ConversationDTO &)> &change);
    /// Adds `text` to the end of a message, at the price of `text` alone. `changed` does not follow: a growing reply is
    /// followed by its pieces.
    void appendText(const QString &messageId, const QString &text);

    /// Keeps what there is now in the draft cache without waiting, so that a crash in the middle of a turn costs no
    /// input. Incognito: nothing.
    void keep();
    /// The same after a pause, for what grows by small pieces.
    void keepSoon();
    /// The same at once, waiting for the disk; and with what was left; for a program that is about to end.
    /// @return false when what is unsaved could not be kept, and would be lost
    QCoro::Task<bool> preserve();
    /// Sends the conversation to the service, after the save under way if there is one. `saveEnded` follows once, when
    /// nothing more is to be saved, always through the event loop; it does not when another conversation is opened
    /// first.
    void save();
    /// Goes on with what is open as a conversation of its own, so that neither the service's copy nor another window's
    /// draft is in its way, and none of them is lost. Not while a turn or a retry is under way.
    void saveAsNew();

Q_SIGNALS:
    /// Another conversation is open, or none.
    void opened();
    void changed();
    void saveEnded(const lmp::ConversationSession::Saved &saved);

    /// What was changed in a conversation up to `edits` is on disk or with the service.
    void secured(const QString &conversationId, quint64 edits);
    /// The open conversation could not be written to the disk. It is tried again, unless another window has written it.
    void refused();

private:
    using Kept = LeftConversations::Kept;
    using DraftId = decltype(LeftConversations::Left::draft);

    /// What is open now, as it is kept.
    LeftConversations::Left snapshot() const;
    QCoro::Task<Kept> write();
    QCoro::Task<> keepOnce();
    QCoro::Task<> keepAfterPause();
    /// Puts away what is open.
    void leave();
    /// Opens what the service has, or what this machine kept; one of them is there.
    void adopt(const std::optional<ConversationDTO> &copy, const std::optional<ConversationDraftCache::Entry> &draft,
               Copy wanted);
    void forgetDraft();
    QCoro::Task<> saveOnce();
    void settle(quint64 edits, std::optional<qint64> revision);
    void endSave(const Saved &saved);

    ConversationService m_service;
    ConversationDraftCache m_drafts;
    ConversationAccount m_account;
    Clock &m_clock;

    std::optional<ConversationDTO> m_conversation;
    std::optional<QString> m_userId; ///< the account the conversation was opened for
    QString m_accountKey;
    DraftId m_draft = std::make_shared<std::optional<QString>>();
    std::optional<QString> m_draftUnread;
    bool m_draftElsewhere = false;
    bool m_keepWaits = false;
    bool m_incognito = false;
    bool m_conflicted = false;
    bool m_known = false;
    bool m_saving = false;
    bool m_saveAgain = false;
    quint64 m_generation = 0; ///< counts what was opened
    quint64 m_edits = 0;
    quint64 m_savedEdits = 0;
    quint64 m_keptEdits = 0; ///< on disk
    std::stop_source m_stop;
    LeftConversations m_left;
};

} // namespace lmp
