#pragma once

#include "core/Json.h"
#include "platform/ApplicationSupport.h"
#include "platform/AtomicFile.h"
#include "platform/FileLock.h"

#include <QCryptographicHash>

#include <cerrno>

namespace lmp {

/// A folder of JSON records, one file for each account and conversation, each stamped with the id of the write that
/// made it, so that two windows or processes cannot overwrite each other unseen.
///
/// A value that holds the place and nothing else. Blocks on the disk; any thread. What cannot be read is never deleted
/// and never overwritten: it is moved beside its place before anything new is written there. A file that is a symbolic
/// link, or that somebody else owns or may write to, is none of ours and counts as that.
class DraftFolder {
public:
    enum class Failure {
        unreadable,       ///< there is a file, and it is no record of ours
        changedElsewhere, ///< the file is not the write that the caller knows
        storage,          ///< the system refused: full, read-only, not allowed, too large, locked for too long
    };
    template <class T>
    using Outcome = std::expected<T, Failure>;
    template <class Record>
    struct Listing {
        QList<Record> records;    ///< of the account
        qsizetype unreadable = 0; ///< how many files could not be read
        QStringList spoilt = {};  ///< of them, those that are no records, whenever one looks
    };

    /// @param name of the folder, below the application's own
    /// @param scope sets apart the services whose accounts may have the same ids; empty for the ordinary one
    DraftFolder(ApplicationSupport support, QString name, QString scope = {})
        : m_support(std::move(support))
        , m_name(std::move(name))
        , m_scope(std::move(scope)) {}

    /// The record, or none when there is no file.
    template <class Record>
    Outcome<std::optional<Record>> read(const QString &account, const QString &id) const {
        const auto path = this->path(account, id);
        return path ? readFile<Record>(*path) : std::unexpected(path.error());
    }

    /// Replaces the record with `bytes`, or removes it when there are none, under a lock that other processes see.
    /// @param known the write id that the caller last read or wrote; a file of another write is left as it is. A file
    /// that is gone is no such write: what replaces it loses nothing.
    template <class Record>
    Outcome<void> replace(const QString &account, const QString &id, const std::optional<QString> &known,
                          const std::optional<QByteArray> &bytes) const {
        const auto path = this->path(account, id);
        if (!path)
            return std::unexpected(path.error());
        const auto lock = hold();
        if (!lock)
            return std::unexpected(lock.error());
        const auto there = readFile<Record>(*path);
        if (bytes && bytes->size() > AtomicFile::maxRead)
            return std::unexpected(Failure::storage);
        if (!there && (there.error() != Failure::unreadable || !bytes || !moveAside(*path, account)))
            return std::unexpected(there.error());
        if (there && *there && (!known || std::optional<QString>((*there)->writeId) != known))
            return std::unexpected(Failure::changedElsewhere);
        const auto done = bytes ? AtomicFile::write(*path, *bytes) : AtomicFile::remove(*path);
        return done ? Outcome<void>() : std::unexpected(Failure::storage);
    }

    /// Every record of `account`. `idOf` tells the conversation of a record. What cannot be read where it lies may be
    /// anybody's; what was moved aside is its account's.
    template <class Record, class IdOf>
    Outcome<Listing<Record>> list(const QString &account, IdOf idOf) const {
        const auto files = this->files(account);
        if (!files)
            return std::unexpected(files.error());
        Listing<Record> listing{.records = {}, .unreadable = files->aside.size(), .spoilt = files->aside};
        for (const QString &path : files->records) {
            auto record = readFile<Record>(path);
            if (!record)
                ++listing.unreadable;
            if (!record && record.error() == Failure::unreadable)
                listing.spoilt.push_back(path);
            // The name is the only place that knows the account.
            else if (*record && path.endsWith(u'/' + fileName(account, idOf(**record))))
                listing.records.push_back(**std::move(record));
        }
        return listing;
    }

private:
    struct Files {
        QStringList records;
        QStringList aside;
    };

    static QString digestOf(const QByteArray &bytes) {
        return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
    }
    /// What a file is that could not be read: none of ours, or one of ours that the system did not give.
    static Failure failureOf(const AtomicFile::Error &error);
    QString fileName(const QString &account, const QString &id) const;
    /// What is in the name of a file of `account` that was moved aside.
    QString tagOf(const QString &account) const;
    /// The folder, closed to everybody else.
    Outcome<QString> folder() const;
    Outcome<QString> path(const QString &account, const QString &id) const;
    Outcome<FileLock> hold() const;
    Outcome<Files> files(const QString &account) const;
    /// Moves what is no record out of the way under a name of its own, next to where it was.
    bool moveAside(const QString &path, const QString &account) const;

    template <class Record>
    static Outcome<std::optional<Record>> readFile(const QString &path) {
        const auto bytes = AtomicFile::read(path, AtomicFile::maxRead, AtomicFile::Trust::OwnerOnly);
        if (!bytes && bytes.error().code == ENOENT)
            return std::nullopt;
        if (!bytes)
            return std::unexpected(failureOf(bytes.error()));
        auto record = Json::decode<Record>(*bytes);
        if (!record)
            return std::unexpected(Failure::unreadable);
        // A file that somebody wrote without one is known by what is in it.
        if constexpr (std::is_same_v<decltype(record->writeId), std::optional<QString>>) {
            if (!record->writeId)
                record->writeId = digestOf(*bytes);
        }
        return *std::move(record);
    }

    ApplicationSupport m_support;
    QString m_name;
    QString m_scope;
};

} // namespace lmp
