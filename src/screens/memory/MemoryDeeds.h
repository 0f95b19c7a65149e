#pragma once

#include "screens/kit/RecordListModel.h"
#include "screens/memory/ChapterRow.h"
#include "screens/memory/MemoryCandidateRow.h"
#include "screens/memory/MemoryItemsModel.h"
#include "screens/memory/MemoryServices.h"

namespace lmp {

/// What is done to memories: one request at a time for each of them, what it does to the lists that are shown, and what
/// is said of it.
///
/// Part of the ledger's model, which owns the lists; UI thread. Nothing is sent twice. Where no answer tells whether it
/// was done, that is said and the ledger is to be read again. A memory that was forgotten can be taken back until the
/// next one is, or the person waves that away.
class MemoryDeeds : public QObject {
    Q_OBJECT
public:
    using Candidates = RecordListModel<MemoryCandidateRow, &MemoryCandidateRow::candidateId>;
    using Chapters = RecordListModel<ChapterRow, &ChapterRow::chapterId>;

    MemoryDeeds(MemoryServices services, MemoryItemsModel &items, Candidates &candidates, Chapters &chapters,
                QObject *parent = nullptr);

    void confirm(const QString &candidateId);
    void dismiss(const QString &candidateId);
    void setFrozen(const QString &memoryId, bool frozen);
    void forget(const QString &memoryId);
    void undoForget();
    void resolveChapter(const QString &chapterId, bool accept);

    /// What was just forgotten and can be taken back, as a sentence; empty when there is nothing.
    QString undoText() const;
    void closeUndo();
    bool underWay() const { return !m_busy.isEmpty(); }
    /// The lists hold what the service has just told.
    void settle();
    /// Somebody else is signed in: what is under way is nobody's business.
    void drop();

Q_SIGNALS:
    void changed();
    /// A sentence for the person. @param failed something is not as it was wished
    void told(const QString &text, bool failed);
    /// The lists are ahead of a load that began before.
    void overtaken();
    /// The lists may not be what the service has.
    void doubted();
    /// An answer has come for somebody who is not signed in any more.
    void ownerChanged();

private:
    struct Forgotten {
        MemoryItemDTO item;
        int place = 0;
    };

    /// Asks, and hands the answer to `done` when it still is of interest.
    template <class T>
    QCoro::Task<> ask(QString id, QCoro::Task<Result<T>> pending, std::function<void(const Result<T> &)> done);
    bool begin(const QString &id);
    void tellBusy();
    /// @param refused said when the service has clearly said no
    void fail(const APIError &error, const QString &refused);
    void takeCandidate(const QString &id);
    void onConfirmed(const QString &id, const Result<MemoryService::ConfirmResp> &answer);
    void onForgotten(const QString &id, const Result<MemoryService::ForgetResp> &answer);
    void onRestored(const Forgotten &what, const Result<APIClient::Empty> &answer);
    void onResolved(const QString &id, bool accept, const Result<APIClient::Empty> &answer);

    MemoryServices m_services;
    MemoryItemsModel &m_items;
    Candidates &m_candidates;
    Chapters &m_chapters;
    quint64 m_generation = 0; ///< counts the accounts
    QSet<QString> m_busy;     ///< ids with a request in flight
    std::optional<Forgotten> m_forgotten;
    std::optional<Forgotten> m_doubtful; ///< perhaps forgotten: the next reading tells
};

} // namespace lmp
