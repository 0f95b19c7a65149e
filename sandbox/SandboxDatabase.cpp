#include "SandboxDatabase.h"

#include "SandboxCrypto.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace lmp::sandbox {

namespace {

constexpr int busyMilliseconds = 5000;
constexpr int schemaVersion = 2;

constexpr const char *schema = R"sql(
CREATE TABLE IF NOT EXISTS secrets(name TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS users(
    id TEXT PRIMARY KEY, phone TEXT, dial_code TEXT, email TEXT UNIQUE, username TEXT NOT NULL, handle TEXT UNIQUE,
    invite_code TEXT NOT NULL, invited_by TEXT, password TEXT, google_subject TEXT UNIQUE, apple_subject TEXT UNIQUE,
    balance INTEGER NOT NULL CHECK(balance >= 0), created_at INTEGER NOT NULL, UNIQUE(dial_code, phone));
CREATE TABLE IF NOT EXISTS tokens(digest TEXT PRIMARY KEY, user_id TEXT NOT NULL, created_at INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS codes(
    purpose TEXT, target TEXT, digest TEXT NOT NULL, expires_at INTEGER NOT NULL, attempts INTEGER NOT NULL,
    PRIMARY KEY(purpose, target));
CREATE TABLE IF NOT EXISTS guests(digest TEXT PRIMARY KEY, rounds_left INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS conversations(
    user_id TEXT, id TEXT, revision INTEGER NOT NULL, title TEXT NOT NULL, mode TEXT, body TEXT NOT NULL,
    activity INTEGER NOT NULL, PRIMARY KEY(user_id, id));
CREATE TABLE IF NOT EXISTS memories(
    id INTEGER PRIMARY KEY, user_id TEXT NOT NULL, slot TEXT NOT NULL, content TEXT NOT NULL, truth TEXT NOT NULL,
    created_at INTEGER NOT NULL, UNIQUE(user_id, content));
CREATE TABLE IF NOT EXISTS charges(
    request_id TEXT PRIMARY KEY, user_id TEXT NOT NULL, amount INTEGER NOT NULL, balance INTEGER NOT NULL,
    charged_at INTEGER NOT NULL);
CREATE INDEX IF NOT EXISTS charges_by_user ON charges(user_id, charged_at);
CREATE TABLE IF NOT EXISTS usage(
    user_id TEXT PRIMARY KEY, started_at INTEGER NOT NULL, last_at INTEGER NOT NULL, reminded_at INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS feedback(
    id INTEGER PRIMARY KEY, user_id TEXT NOT NULL, body TEXT NOT NULL, created_at INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS telemetry(
    id INTEGER PRIMARY KEY, event_id TEXT NOT NULL UNIQUE, event TEXT NOT NULL, context TEXT NOT NULL,
    consent TEXT NOT NULL, sent_at TEXT NOT NULL, received_at INTEGER NOT NULL);
)sql";

/// From version 1, whose memories were a plain list.
constexpr const char *memoryLedger = R"sql(
ALTER TABLE memories ADD COLUMN uid TEXT;
ALTER TABLE memories ADD COLUMN kind TEXT NOT NULL DEFAULT '关于你';
ALTER TABLE memories ADD COLUMN source TEXT NOT NULL DEFAULT '聊天里说过';
ALTER TABLE memories ADD COLUMN confidence TEXT NOT NULL DEFAULT '中';
ALTER TABLE memories ADD COLUMN scope TEXT NOT NULL DEFAULT '全部';
ALTER TABLE memories ADD COLUMN state TEXT NOT NULL DEFAULT 'active';
ALTER TABLE memories ADD COLUMN frozen INTEGER NOT NULL DEFAULT 0;
ALTER TABLE memories ADD COLUMN supersedes TEXT;
ALTER TABLE memories ADD COLUMN touched_at INTEGER;
ALTER TABLE memories ADD COLUMN revision INTEGER NOT NULL DEFAULT 1;
UPDATE memories SET uid = 'mem_' || lower(hex(randomblob(6)));
CREATE UNIQUE INDEX memories_by_uid ON memories(user_id, uid);
CREATE TABLE memory_history(
    id INTEGER PRIMARY KEY, user_id TEXT NOT NULL, memory_id TEXT NOT NULL, uid TEXT NOT NULL, previous TEXT NOT NULL,
    next TEXT NOT NULL, source TEXT NOT NULL, at INTEGER NOT NULL);
CREATE TABLE memory_candidates(
    id INTEGER PRIMARY KEY, user_id TEXT NOT NULL, uid TEXT NOT NULL UNIQUE, slot TEXT NOT NULL, content TEXT NOT NULL,
    truth TEXT NOT NULL, why TEXT NOT NULL, scope TEXT NOT NULL, UNIQUE(user_id, content));
CREATE TABLE chapters(id INTEGER PRIMARY KEY, user_id TEXT NOT NULL, uid TEXT NOT NULL UNIQUE, body TEXT NOT NULL);
)sql";

/// SQLite gives its companion files the mode of the database, so making that one private is enough.
std::string privateFile(const std::filesystem::path &file) {
    const auto folder = file.parent_path();
    if (!folder.empty() && !std::filesystem::exists(folder)) {
        std::filesystem::create_directories(folder.parent_path());
        if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
            throw std::runtime_error("cannot make the folder of the state file");
    }
    const int handle = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (handle < 0)
        throw std::runtime_error("cannot open the state file");
    const bool isPrivate = ::fchmod(handle, 0600) == 0;
    ::close(handle);
    if (!isPrivate)
        throw std::runtime_error("cannot make the state file private");
    return file.string();
}

} // namespace

SandboxDatabase::SandboxDatabase(const std::filesystem::path &file)
    : m_database(privateFile(file), SQLite::OPEN_READWRITE, busyMilliseconds) {
    prepare();
}

void SandboxDatabase::prepare() {
    // Switching the journal takes a lock that the busy handler is not asked about.
    for (int attempt = 0;; ++attempt) {
        try {
            m_database.exec("PRAGMA journal_mode=WAL");
            break;
        } catch (const SQLite::Exception &error) {
            if (error.getErrorCode() != SQLITE_BUSY || attempt == 50)
                throw;
            sqlite3_sleep(20);
        }
    }
    m_database.exec("PRAGMA synchronous=NORMAL");
    write([](SQLite::Database &database) {
        const int version = database.execAndGet("PRAGMA user_version").getInt();
        if (version > schemaVersion)
            throw std::runtime_error("the state file is of a newer sandbox");
        database.exec(schema);
        if (version < 2)
            database.exec(memoryLedger);
        database.exec("PRAGMA user_version=" + std::to_string(schemaVersion));
    });
}

std::string SandboxDatabase::secret(const std::string &name) {
    return write([&](SQLite::Database &database) {
        SQLite::Statement insert(database, "INSERT OR IGNORE INTO secrets(name, value) VALUES(?, ?)");
        insert.bind(1, name);
        insert.bind(2, randomHex(32));
        insert.exec();
        SQLite::Statement select(database, "SELECT value FROM secrets WHERE name = ?");
        select.bind(1, name);
        select.executeStep();
        return select.getColumn(0).getString();
    });
}

} // namespace lmp::sandbox
