#pragma once

#include "conversation/ConversationAccount.h"
#include "conversation/ConversationDraftCache.h"
#include "conversation/ConversationMessageDelivery.h"
#include "conversation/ConversationService.h"
#include "platform/Clock.h"

#include <QObject>
#include <QThreadPool>

#include <functional>

namespace lmp {

/// The one conversation that is open, for one account: what it holds, whether the service has it, and where it is kept
/// while the service has not.
///
/// Owned by whoever shows the conversation; UI thread. Nothing that was typed is dropped: what cannot be saved goes
/// into the draft cache, also when the conversation is closed with something unsaved. An incognito conversation is
/// neither saved nor kept. Late answers for a conversation that is no longer open are dropped.
class ConversationSession : public QObject {
    Q_OBJECT
public:
    /// What became of a save.
    struct Saved {
        enum class Where {
            Nowhere, ///< there was nothing to save, or the conversation is incognito
            Service,
            Local, ///< in the draft cache alone
            Lost,  ///< nowhere but in memory: `text` says so
        };
        Where where = Where::Nowhere;
        bool conflict = false;
        std::optional<QString> text; ///< the sentence shown, when it is not with the service
    };
    /// Which copy to open when this machine holds unsaved changes that the service's copy does not.
    enum class Copy {
        Local,   ///< the local one, marked as in conflict when the service's has moved on
        Service, ///< the service's; the local one is given up, so only at the person's own word
    };

    ConversationSession(ConversationService service, ConversationDraftCache drafts, ConversationAccount account,
                        const Clock &clock, QObject *parent = nullptr);
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

    /// Changes the open conversation; nothing happens when none is open. `changed` follows.
    void edit(const std::function<void(ConversationDTO &)> &change);
    /// Adds `text` to the end of a message, at the price of `text` alone. `changed` does not follow: a growing reply is
    /// followed by its pieces.
    void appendText(const QString &messageId, const QString &text);

    /// Keeps what there is now in the draft cache without waiting, so that a crash in the middle of a turn costs no
    /// input. Incognito: nothing.
    void keep();
    /// The same, waiting for the disk; for a program that is about to end.
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

private:
    /// The write id of our draft of one conversation, if there is one. Touched on the file thread alone, where what was
    /// written last is known.
    using DraftId = std::shared_ptr<std::optional<QString>>;
    using Kept = ConversationDraftCache::Outcome<QString>;

    /// How what is open now is kept, to be run on the file thread.
    std::function<Kept()> keeping() const;
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
    const Clock &m_clock;

    std::optional<ConversationDTO> m_conversation;
    std::optional<QString> m_userId; ///< the account the conversation was opened for
    QString m_accountKey;
    DraftId m_draft = std::make_shared<std::optional<QString>>();
    bool m_draftElsewhere = false;
    bool m_incognito = false;
    bool m_conflicted = false;
    bool m_known = false;
    bool m_saving = false;
    bool m_saveAgain = false;
    quint64 m_generation = 0; ///< counts what was opened
    quint64 m_edits = 0;
    quint64 m_savedEdits = 0;
    QThreadPool m_files; ///< of one thread: drafts are written and removed in the order in which that was decided
};

} // namespace lmp
