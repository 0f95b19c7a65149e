#pragma once

#include "conversation/ConversationDraftCache.h"
#include "platform/Clock.h"

#include <QCoroTask>
#include <QObject>

#include <memory>

namespace lmp {

/// Conversations that were left with something unsaved, until the disk has taken them.
///
/// Part of a session; the clock outlives it. UI thread; files are written on the file thread. What the disk refuses
/// stays here and is tried again, so that it can be opened once more or be asked about before the program ends.
class LeftConversations : public QObject {
    Q_OBJECT
public:
    /// A conversation as it stood, and where it is kept.
    struct Left {
        std::optional<QString> user; ///< whose it is
        ConversationDTO snapshot;
        /// The write id of our draft of it, if there is one. Touched on the file thread alone, where what was written
        /// last is known.
        std::shared_ptr<std::optional<QString>> draft;
        quint64 edits = 0; ///< counts what was changed
    };
    using Kept = ConversationDraftCache::Outcome<QString>;

    static constexpr std::chrono::milliseconds retryPause{2000};

    LeftConversations(ConversationDraftCache drafts, Clock &clock, QObject *parent = nullptr);
    ~LeftConversations() override;

    /// Writes it soon, and again until that works.
    void add(const Left &left);
    /// What is here of a conversation, or none.
    std::optional<Left> find(const std::optional<QString> &user, const QString &id) const;
    void remove(const std::optional<QString> &user, const QString &id);
    bool isEmpty() const { return m_left.empty(); }
    /// Writes what is here. @return false when some of it could not be written
    QCoro::Task<bool> keep();
    /// The titles of those of `user` that the disk has refused.
    QStringList refused(const std::optional<QString> &user) const;

    /// Writes one; to be run on the file thread.
    static Kept write(const ConversationDraftCache &drafts, const Left &left, const QDateTime &now);

Q_SIGNALS:
    /// One is on disk as it was after `edits`.
    void kept(const QString &id, quint64 edits);
    /// `refused` is something else.
    void refusedChanged();

private:
    struct Waiting {
        Left left;
        bool refused = false;
    };

    QCoro::Task<> keepNow();
    QCoro::Task<> retry();

    ConversationDraftCache m_drafts;
    Clock &m_clock;
    std::vector<Waiting> m_left;
    bool m_retryWaits = false;
    std::stop_source m_stop;
};

} // namespace lmp
