#pragma once

#include "conversation/ConversationDTO.h"
#include "conversation/ConversationSearchHit.h"
#include "conversation/ConversationSummaryDTO.h"
#include "platform/FileLock.h"

#include <QSet>

#include <expected>
#include <memory>

namespace SQLite {
class Database;
}

namespace lmp {

/// The messages of one account on this machine, in a file that knows every run of one, two and three characters in
/// them.
///
/// Owned by `ConversationSearch`; one thread at a time, and every call blocks on the disk. The file holds nothing that
/// the service or the drafts do not hold: one that is damaged or of another version is thrown away, and whoever feeds
/// this begins anew. It is readable by its owner alone (0600). Incognito conversations never come here.
class ConversationSearchIndex {
public:
    enum class Fault {
        damaged, ///< the file is no index, or not ours; `discard` and begin anew
        storage, ///< the system refused: full, read-only, not allowed, locked for too long
    };
    template <class T>
    using Outcome = std::expected<T, Fault>;

    /// Where messages that were not there before are put among the others.
    enum class Age {
        latest, ///< said just now: above all others
        older,  ///< fetched because they were missing: a conversation that is new here goes below all others
    };
    struct Page {
        QList<ConversationSearchHit> hits; ///< the latest first
        qint64 total = 0;                  ///< of all hits, this page's and others'
        bool totalIsAtLeast = false;       ///< counting was given up there
        bool more = false;                 ///< there are, or may be, hits below `reached`
        qint64 reached = 0;                ///< where to go on
    };
    /// What is to be done after the service has told which conversations there are.
    struct Plan {
        QSet<QString> missing; ///< of those that were listed: not in the index, or not completely
        QStringList wanted;    ///< these and what has changed elsewhere, in the service's order
    };
    /// How many messages are written at a time, so that a question never waits long.
    static constexpr qsizetype batch = 100;
    /// How many messages are looked at in one go where the grams alone do not decide: what was asked may be of no
    /// interest any more.
    static constexpr qint64 looks = 3000;
    static constexpr int version = 2;

    explicit ConversationSearchIndex(QString path);
    ~ConversationSearchIndex();
    ConversationSearchIndex(const ConversationSearchIndex &) = delete;

    /// Opens the file, or makes it. The other calls do so themselves; whether what is there is sound shows here.
    Outcome<void> open();
    /// Closes and removes the file.
    void discard();

    /// Brings the index up to what `conversation` holds, by at most `batch` messages.
    /// @return whether that was all; else the call is to be made again
    Outcome<bool> put(const ConversationDTO &conversation, Age age);
    /// Whether anything of a conversation is in the index; reads only.
    Outcome<bool> holds(const QString &conversationId);
    /// Removes a conversation; nothing is written for one that is not there. What was indexed of its text lies among
    /// the grams until it is tidied away.
    Outcome<void> remove(const QString &conversationId);
    /// Tidies away what has been removed, by a piece that takes no longer than a frame or two.
    /// @return whether there is no trace left; else the call is to be made again
    Outcome<bool> tidy();
    /// Removes what is neither in `listed` nor `kept`, and compares the service's order with the one before:
    /// what has moved towards the front has changed elsewhere, unless it is `fresh`.
    Outcome<Plan> plan(const QList<ConversationSummaryDTO> &listed, const QSet<QString> &kept,
                       const QSet<QString> &fresh);

    /// The latest messages that hold every word, below `below` if that is given. Ends after `looks` messages, found or
    /// not: then `more` and `reached` say where to go on.
    Outcome<Page> find(const SearchTerms &terms, std::optional<qint64> below, qsizetype limit);

    const QString &path() const { return m_path; }

private:
    struct Stored {
        qint64 place = 0;
        QString id;
        QString text;
    };

    /// What the index has of the listed conversations, in the order in which the service listed them last.
    struct Known {
        QStringList order;
        QStringList others; ///< that are not listed
        QSet<QString> complete;
    };

    template <class F>
    auto guarded(F work) -> Outcome<std::invoke_result_t<F>>;
    void openFile();
    void makeTables();
    void checkTables();
    bool putBatch(const ConversationDTO &conversation, qint64 key, Age age);
    /// Where `count` messages go that follow the one at `last`, if there is one.
    qint64 placeAfter(std::optional<qint64> last, qsizetype count, Age age);
    QList<Stored> storedOf(qint64 conversation);
    qint64 keyOf(const ConversationDTO &conversation);
    void insertMessage(qint64 place, qint64 conversation, const ConvMessageDTO &message);
    void removeMessage(const Stored &message);
    std::optional<qint64> keyOf(const QString &id);
    bool removeConversation(const QString &id);
    bool endedBadly();
    Known readKnown(const QList<ConversationSummaryDTO> &listed);
    static QSet<QString> movedSince(const Known &known, const QList<ConversationSummaryDTO> &listed);
    void noteOrder(const QList<ConversationSummaryDTO> &listed);
    Page findPage(const SearchTerms &terms, std::optional<qint64> below, qsizetype limit);

    QString m_path;
    std::optional<FileLock> m_first; ///< nobody else had the file open when we opened it
    bool m_merging = false;          ///< the traces are being merged away
    std::unique_ptr<SQLite::Database> m_database;
};

} // namespace lmp
