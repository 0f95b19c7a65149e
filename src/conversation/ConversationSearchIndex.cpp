#include "conversation/ConversationSearchIndex.h"

#include "conversation/SearchExcerpt.h"
#include "conversation/SearchGrams.h"
#include "core/SearchFold.h"
#include "platform/Log.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lmp {

namespace {

constexpr int applicationId = 0x4c4d5053; // "LMPS"
constexpr int busyLimit = 2000;           ///< ms that another process may hold the file
constexpr qsizetype mostMoved = 50;
constexpr int mergedPages = 64; ///< of the index, in one go

/// Thrown where the file is readable and yet not ours.
struct Foreign {};

QString textOf(const SQLite::Column &column) {
    return QString::fromUtf8(column.getText(), column.getBytes());
}

void bindText(SQLite::Statement &statement, int index, const QByteArray &utf8) {
    statement.bind(index, std::string(utf8.constData(), size_t(utf8.size())));
}

/// Half a surrogate pair has no UTF-8: what is indexed must be what is read back.
QString writable(const QString &text) {
    return QString::fromUtf8(text.toUtf8());
}

bool isDamage(int code) {
    return code == SQLITE_CORRUPT || code == SQLITE_NOTADB || code == SQLITE_ERROR || code == SQLITE_SCHEMA ||
           code == SQLITE_MISMATCH || code == SQLITE_CONSTRAINT || code == SQLITE_FORMAT;
}

/// The file with its mode from the first moment; SQLite gives the files beside it the same.
void makePrivate(const QString &path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0 && errno == ELOOP)
        throw Foreign();
    if (fd < 0)
        throw SQLite::Exception("the index cannot be made", SQLITE_CANTOPEN);
    struct stat status = {};
    const bool ours = ::fstat(fd, &status) == 0 && status.st_uid == ::geteuid() && ::fchmod(fd, 0600) == 0;
    ::close(fd);
    if (!ours)
        throw Foreign();
}

} // namespace

template <class F>
auto ConversationSearchIndex::guarded(F work) -> Outcome<std::invoke_result_t<F>> {
    try {
        if (!m_database)
            openFile();
        if constexpr (std::is_void_v<std::invoke_result_t<F>>) {
            work();
            return {};
        } else
            return work();
    } catch (const SQLite::Exception &error) {
        qCWarning(logConversation) << "the search index failed:" << error.getErrorCode()
                                   << error.getExtendedErrorCode();
        m_database.reset();
        return std::unexpected(isDamage(error.getErrorCode()) ? Fault::damaged : Fault::storage);
    } catch (const Foreign &) {
        m_database.reset();
        return std::unexpected(Fault::damaged);
    }
}

ConversationSearchIndex::ConversationSearchIndex(QString path)
    : m_path(std::move(path)) {}

ConversationSearchIndex::~ConversationSearchIndex() = default;

// The file

ConversationSearchIndex::Outcome<void> ConversationSearchIndex::open() {
    return guarded([] {});
}

void ConversationSearchIndex::openFile() {
    makePrivate(m_path);
    const bool suspect = endedBadly();
    auto database = std::make_unique<SQLite::Database>(m_path.toStdString(),
                                                       SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX, busyLimit);
    m_database = std::move(database);
    // Nothing here is worth waiting for the disk: it can all be had again.
    m_database->exec("PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA secure_delete=ON; "
                     "PRAGMA temp_store=MEMORY;");
    if (m_database->execAndGet("PRAGMA user_version").getInt() == 0)
        makeTables();
    checkTables();
    // The whole file is read for it, which nobody should have to wait for at every start.
    if (suspect && m_database->execAndGet("PRAGMA quick_check(1)").getString() != "ok")
        throw Foreign();
}

bool ConversationSearchIndex::endedBadly() {
    m_merging = false;
    if (!m_first) {
        if (auto lock = FileLock::hold(m_path + QLatin1StringView(".lock"), std::chrono::milliseconds(0)))
            m_first.emplace(*std::move(lock));
    }
    // The last one to close the file takes its log away; what lies there while nobody has it open was left by a crash.
    return m_first && QFileInfo(m_path + QLatin1StringView("-wal")).size() > 0;
}

void ConversationSearchIndex::makeTables() {
    SQLite::Transaction transaction(*m_database, SQLite::TransactionBehavior::IMMEDIATE);
    // Another process may have been quicker; a file with tables and no version is somebody else's.
    if (m_database->execAndGet("PRAGMA user_version").getInt() != 0)
        return;
    if (m_database->execAndGet("SELECT count(*) FROM sqlite_master").getInt() != 0)
        throw Foreign();
    m_database->exec(
        "CREATE TABLE conversation(key INTEGER PRIMARY KEY, id TEXT NOT NULL UNIQUE, title TEXT NOT NULL,"
        " complete INTEGER NOT NULL DEFAULT 0, rank INTEGER);"
        "CREATE TABLE message(place INTEGER PRIMARY KEY, conversation INTEGER NOT NULL, id TEXT NOT NULL,"
        " twin INTEGER NOT NULL, text TEXT NOT NULL);"
        "CREATE TABLE untidy(since INTEGER PRIMARY KEY);"
        "CREATE INDEX message_conversation ON message(conversation, place);"
        "CREATE VIRTUAL TABLE gram USING fts5(grams, content='', columnsize=0, detail=none, tokenize='ascii');");
    m_database->exec("PRAGMA application_id=" + std::to_string(applicationId) +
                     "; PRAGMA user_version=" + std::to_string(version));
    transaction.commit();
}

void ConversationSearchIndex::checkTables() {
    const bool ours = m_database->execAndGet("PRAGMA application_id").getInt() == applicationId &&
                      m_database->execAndGet("PRAGMA user_version").getInt() == version;
    if (!ours)
        throw Foreign();
}

void ConversationSearchIndex::discard() {
    m_database.reset();
    for (const char *end : {"", "-wal", "-shm"})
        ::unlink(QFile::encodeName(m_path + QLatin1StringView(end)).constData());
}

// Feeding

ConversationSearchIndex::Outcome<bool> ConversationSearchIndex::put(const ConversationDTO &conversation, Age age) {
    return guarded([&] {
        SQLite::Transaction transaction(*m_database, SQLite::TransactionBehavior::IMMEDIATE);
        const qint64 key = keyOf(conversation);
        const bool all = putBatch(conversation, key, age);
        SQLite::Statement complete(*m_database,
                                   "UPDATE conversation SET complete = ?1 WHERE key = ?2 AND complete <> ?1");
        complete.bind(1, all ? 1 : 0);
        complete.bind(2, std::int64_t(key));
        complete.exec();
        transaction.commit();
        return all;
    });
}

qint64 ConversationSearchIndex::keyOf(const ConversationDTO &conversation) {
    const QByteArray id = conversation.id.toUtf8();
    SQLite::Statement write(*m_database, "INSERT INTO conversation(id, title) VALUES(?1, ?2)"
                                         " ON CONFLICT(id) DO UPDATE SET title = ?2 RETURNING key");
    bindText(write, 1, id);
    bindText(write, 2, conversation.title.toUtf8());
    write.executeStep();
    const qint64 key = write.getColumn(0).getInt64();
    write.executeStep();
    return key;
}

QList<ConversationSearchIndex::Stored> ConversationSearchIndex::storedOf(qint64 conversation) {
    SQLite::Statement read(*m_database, "SELECT place, id, text FROM message WHERE conversation = ? ORDER BY place");
    read.bind(1, std::int64_t(conversation));
    QList<Stored> stored;
    while (read.executeStep())
        stored.push_back({.place = read.getColumn(0).getInt64(),
                          .id = textOf(read.getColumn(1)),
                          .text = textOf(read.getColumn(2))});
    return stored;
}

void ConversationSearchIndex::insertMessage(qint64 place, qint64 conversation, const ConvMessageDTO &message) {
    const QString text = writable(message.text);
    SQLite::Statement write(*m_database, "INSERT INTO message(place, conversation, id, twin, text) VALUES(?,?,?,?,?)");
    write.bind(1, std::int64_t(place));
    write.bind(2, std::int64_t(conversation));
    bindText(write, 3, message.id.toUtf8());
    write.bind(4, message.role == TalkRole::twin ? 1 : 0);
    bindText(write, 5, text.toUtf8());
    write.exec();
    SQLite::Statement grams(*m_database, "INSERT INTO gram(rowid, grams) VALUES(?,?)");
    grams.bind(1, std::int64_t(place));
    bindText(grams, 2, SearchGrams::of(SearchFold::fold(text)));
    grams.exec();
}

void ConversationSearchIndex::removeMessage(const Stored &message) {
    SQLite::Statement grams(*m_database, "INSERT INTO gram(gram, rowid, grams) VALUES('delete', ?, ?)");
    grams.bind(1, std::int64_t(message.place));
    bindText(grams, 2, SearchGrams::of(SearchFold::fold(message.text)));
    grams.exec();
    SQLite::Statement row(*m_database, "DELETE FROM message WHERE place = ?");
    row.bind(1, std::int64_t(message.place));
    row.exec();
}

bool ConversationSearchIndex::putBatch(const ConversationDTO &conversation, qint64 key, Age age) {
    const auto stored = storedOf(key);
    const auto &messages = conversation.messages;
    qsizetype room = batch;
    qsizetype same = 0;
    // What keeps its place may still have another text: a reply that was tried again.
    for (; same < std::min(stored.size(), messages.size()) && stored[same].id == messages[same].id; ++same) {
        if (stored[same].text == writable(messages[same].text))
            continue;
        if (room-- == 0)
            return false;
        removeMessage(stored[same]);
        insertMessage(stored[same].place, key, messages[same]);
    }
    for (qsizetype i = stored.size() - 1; i >= same; --i) {
        if (room-- == 0)
            return false;
        removeMessage(stored[i]);
    }
    qint64 place =
        placeAfter(same > 0 ? std::optional(stored[same - 1].place) : std::nullopt, messages.size() - same, age);
    for (qsizetype i = same; i < messages.size(); ++i) {
        if (room-- == 0)
            return false;
        insertMessage(place++, key, messages[i]);
    }
    return true;
}

qint64 ConversationSearchIndex::placeAfter(std::optional<qint64> last, qsizetype count, Age age) {
    const qint64 top = m_database->execAndGet("SELECT coalesce(max(place), 0) FROM message").getInt64() + 1;
    if (age == Age::latest)
        return top;
    if (!last)
        return m_database->execAndGet("SELECT min(coalesce(min(place), 1), 1) FROM message").getInt64() - count;
    // The first batch of an old conversation has left room for the others above itself.
    SQLite::Statement read(*m_database, "SELECT min(place) FROM message WHERE place > ?");
    read.bind(1, std::int64_t(*last));
    read.executeStep();
    const bool fits = read.getColumn(0).isNull() || read.getColumn(0).getInt64() - *last > count;
    return fits ? *last + 1 : top;
}

std::optional<qint64> ConversationSearchIndex::keyOf(const QString &id) {
    SQLite::Statement find(*m_database, "SELECT key FROM conversation WHERE id = ?");
    bindText(find, 1, id.toUtf8());
    return find.executeStep() ? std::optional(qint64(find.getColumn(0).getInt64())) : std::nullopt;
}

ConversationSearchIndex::Outcome<bool> ConversationSearchIndex::holds(const QString &conversationId) {
    return guarded([&] { return keyOf(conversationId).has_value(); });
}

ConversationSearchIndex::Outcome<void> ConversationSearchIndex::remove(const QString &conversationId) {
    return guarded([&] {
        if (!keyOf(conversationId))
            return;
        SQLite::Transaction transaction(*m_database, SQLite::TransactionBehavior::IMMEDIATE);
        removeConversation(conversationId);
        transaction.commit();
    });
}

bool ConversationSearchIndex::removeConversation(const QString &id) {
    const auto key = keyOf(id);
    if (!key)
        return false;
    const auto messages = storedOf(*key);
    for (const Stored &message : messages)
        removeMessage(message);
    SQLite::Statement row(*m_database, "DELETE FROM conversation WHERE key = ?");
    row.bind(1, std::int64_t(*key));
    row.exec();
    if (!messages.isEmpty())
        m_database->exec("INSERT OR IGNORE INTO untidy VALUES(1)");
    return true;
}

ConversationSearchIndex::Outcome<bool> ConversationSearchIndex::tidy() {
    return guarded([&] {
        if (m_database->execAndGet("SELECT count(*) FROM untidy").getInt() == 0)
            return true;
        // A removal is an entry of its own in the index until it is merged with what it removes. The first call takes
        // up everything that there is now, the others go on with that.
        SQLite::Statement merge(*m_database, "INSERT INTO gram(gram, rank) VALUES('merge', ?)");
        merge.bind(1, std::exchange(m_merging, true) ? mergedPages : -mergedPages);
        const auto before = m_database->getTotalChanges();
        merge.exec();
        // FTS5 counts a merge that had nothing to do as one change.
        if (m_database->getTotalChanges() - before >= 2)
            return false;
        m_merging = false;
        m_database->exec("DELETE FROM untidy");
        SQLite::Statement(*m_database, "PRAGMA wal_checkpoint(TRUNCATE)").executeStep();
        return true;
    });
}

// What there is

ConversationSearchIndex::Outcome<ConversationSearchIndex::Plan>
ConversationSearchIndex::plan(const QList<ConversationSummaryDTO> &listed, const QSet<QString> &kept,
                              const QSet<QString> &fresh) {
    return guarded([&] {
        SQLite::Transaction transaction(*m_database, SQLite::TransactionBehavior::IMMEDIATE);
        const Known known = readKnown(listed);
        for (const QString &id : known.others) {
            if (!kept.contains(id) && !fresh.contains(id))
                removeConversation(id);
        }
        const QSet<QString> moved = movedSince(known, listed) - fresh;
        Plan plan;
        for (const auto &summary : listed) {
            const bool missing = !known.complete.contains(summary.id);
            if (missing)
                plan.missing.insert(summary.id);
            if (missing || moved.contains(summary.id))
                plan.wanted.push_back(summary.id);
        }
        noteOrder(listed);
        transaction.commit();
        return plan;
    });
}

ConversationSearchIndex::Known ConversationSearchIndex::readKnown(const QList<ConversationSummaryDTO> &listed) {
    QSet<QString> ids;
    for (const auto &summary : listed)
        ids.insert(summary.id);
    Known known;
    SQLite::Statement read(*m_database, "SELECT id, complete, rank FROM conversation ORDER BY rank");
    while (read.executeStep()) {
        const QString id = textOf(read.getColumn(0));
        if (!ids.contains(id))
            known.others.push_back(id);
        else if (!read.getColumn(2).isNull())
            known.order.push_back(id);
        if (read.getColumn(1).getInt())
            known.complete.insert(id);
    }
    return known;
}

QSet<QString> ConversationSearchIndex::movedSince(const Known &known, const QList<ConversationSummaryDTO> &listed) {
    // From the back: what is not where it was has been taken out and put in front.
    const QSet<QString> ranked(known.order.begin(), known.order.end());
    QSet<QString> moved;
    qsizetype was = known.order.size() - 1;
    for (qsizetype now = listed.size() - 1; now >= 0; --now) {
        const QString &id = listed[now].id;
        if (!ranked.contains(id) || moved.contains(id))
            continue;
        while (was >= 0 && known.order[was] != id)
            moved.insert(known.order[was--]);
        --was;
    }
    // A service that lists them otherwise than by their last change says nothing by that.
    if (moved.size() > mostMoved && moved.size() > known.order.size() / 2)
        moved.clear();
    return moved;
}

void ConversationSearchIndex::noteOrder(const QList<ConversationSummaryDTO> &listed) {
    SQLite::Statement note(*m_database, "INSERT INTO conversation(rank, title, id) VALUES(?1, ?2, ?3)"
                                        " ON CONFLICT(id) DO UPDATE SET rank = ?1, title = ?2");
    for (qsizetype rank = 0; rank < listed.size(); ++rank) {
        note.reset();
        note.bind(1, std::int64_t(rank));
        bindText(note, 2, listed[rank].title.toUtf8());
        bindText(note, 3, listed[rank].id.toUtf8());
        note.exec();
    }
}

// Looking

ConversationSearchIndex::Outcome<ConversationSearchIndex::Page>
ConversationSearchIndex::find(const SearchTerms &terms, std::optional<qint64> below, qsizetype limit) {
    if (terms.isEmpty())
        return Page();
    return guarded([&] { return findPage(terms, below, limit); });
}

ConversationSearchIndex::Page ConversationSearchIndex::findPage(const SearchTerms &terms, std::optional<qint64> below,
                                                                qsizetype limit) {
    const QByteArray query = SearchGrams::query(terms.words());
    const bool exact = SearchGrams::isExact(terms.words());
    Page page;
    if (exact) {
        SQLite::Statement count(*m_database, "SELECT count(*) FROM gram WHERE gram MATCH ?");
        bindText(count, 1, query);
        count.executeStep();
        page.total = count.getColumn(0).getInt64();
    }
    SQLite::Statement read(*m_database,
                           "SELECT m.place, c.id, c.title, m.id, m.twin, m.text FROM gram g"
                           " CROSS JOIN message m ON m.place = g.rowid CROSS JOIN conversation c ON c.key ="
                           " m.conversation WHERE g.gram MATCH ?1 AND g.rowid < ?2 ORDER BY g.rowid DESC");
    bindText(read, 1, query);
    read.bind(2, std::int64_t(below.value_or(std::numeric_limits<qint64>::max())));
    for (qint64 seen = 0; read.executeStep(); ++seen) {
        const bool full = page.hits.size() == limit;
        if (exact ? full : seen == looks) {
            page.more = true;
            page.totalIsAtLeast = !exact;
            break;
        }
        const qint64 place = read.getColumn(0).getInt64();
        if (!full)
            page.reached = place;
        const QString text = textOf(read.getColumn(5));
        if (!exact && !terms.matches(SearchFold::fold(text)))
            continue;
        page.total += !exact;
        page.more = page.more || full;
        if (full)
            continue;
        ConversationSearchHit hit{.place = place,
                                  .conversationId = textOf(read.getColumn(1)),
                                  .title = textOf(read.getColumn(2)),
                                  .messageId = textOf(read.getColumn(3)),
                                  .role = read.getColumn(4).getInt() ? TalkRole::twin : TalkRole::user,
                                  .excerpt = {},
                                  .marks = {}};
        hit.excerpt = SearchExcerpt::around(text, terms, hit.role);
        hit.marks = terms.anyRanges(hit.excerpt);
        page.hits.push_back(std::move(hit));
    }
    return page;
}

} // namespace lmp
