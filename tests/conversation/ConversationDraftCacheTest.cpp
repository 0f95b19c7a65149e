#include "conversation/ConversationDraftCache.h"
#include "conversation/ConversationTexts.h"
#include "core/Json.h"

#include "support/ManualClock.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace lmp {

using namespace Qt::StringLiterals;
using Kind = ConversationDraftCache::CacheError::Kind;

class ConversationDraftCacheTest : public ::testing::Test {
protected:
    /// Saves as whoever wrote the file last.
    ConversationDraftCache::Outcome<QString> save(const std::optional<QString> &account, const QString &id,
                                                  const QString &title = {}) {
        QString &known = m_written[account.value_or(QString()) + u'/' + id];
        auto saved = save(account, id, title, known.isEmpty() ? std::nullopt : std::optional(known));
        known = saved.value_or(known);
        return saved;
    }
    ConversationDraftCache::Outcome<QString> save(const std::optional<QString> &account, const QString &id,
                                                  const QString &title, const std::optional<QString> &known) {
        ConversationDTO snapshot;
        snapshot.id = id;
        snapshot.title = title;
        clock.advance(std::chrono::seconds(1));
        return cache.save(account, snapshot, known, clock.now());
    }
    QDir files() const { return QDir(folder.filePath(u"ConversationDrafts/v1"_s)); }
    void damage(const QByteArray &bytes) {
        QFile file(files().filePath(files().entryList({u"*.json"_s}).value(0)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir folder;
    ManualClock clock;
    ConversationDraftCache cache{ApplicationSupport::at(folder.path())};
    const std::optional<QString> user = u"u1"_s;

private:
    QHash<QString, QString> m_written;
};

TEST_F(ConversationDraftCacheTest, OnePrivateFileForEachPair) {
    ASSERT_TRUE(save(user, u"c"_s, u"一"_s));
    ASSERT_TRUE(save(user, u"c"_s, u"二"_s));
    // Run together, these are the same text; they are not the same conversation.
    ASSERT_TRUE(save(u"a"_s, u"bc"_s));
    ASSERT_TRUE(save(u"ab"_s, u"c"_s));
    const auto names = files().entryInfoList(QDir::Files); // the lock is a hidden one
    ASSERT_EQ(names.size(), 3);
    for (const QFileInfo &file : names) {
        EXPECT_EQ(file.completeBaseName().size(), 64);
        EXPECT_EQ(file.completeBaseName(), file.completeBaseName().toLower());
        EXPECT_EQ(file.suffix(), u"json"_s);
        EXPECT_EQ(file.permissions() &
                      (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOwner),
                  QFile::Permissions());
    }
    EXPECT_TRUE(files().exists(
        QString::fromLatin1(QCryptographicHash::hash(R"(["u1","c"])", QCryptographicHash::Sha256).toHex()) +
        u".json"_s));
    const auto read = cache.read(user, u"c"_s);
    ASSERT_TRUE(read && *read);
    EXPECT_EQ((*read)->snapshot.title, u"二"_s);
    EXPECT_EQ(cache.read(user, u"d"_s).value().has_value(), false);
}

TEST_F(ConversationDraftCacheTest, WithoutAccountOrConversation) {
    for (const auto &nobody : {std::optional<QString>(), std::optional(QString())}) {
        EXPECT_EQ(save(nobody, u"c"_s).error().kind, Kind::missingAccount);
        EXPECT_EQ(cache.read(nobody, u"c"_s).error().kind, Kind::missingAccount);
        EXPECT_EQ(cache.list(nobody).error().kind, Kind::missingAccount);
    }
    EXPECT_EQ(save(user, QString()).error().kind, Kind::invalidConversation);
    EXPECT_FALSE(QFile::exists(folder.filePath(u"ConversationDrafts"_s)));
}

TEST_F(ConversationDraftCacheTest, WhatCannotBeReadStays) {
    const QByteArray broken[] = {"", "{", "[]", R"({"writeId":"w","updatedAt":"d"})", QByteArray(100, '\0')};
    for (const QByteArray &bytes : broken) {
        for (const QString &name : files().entryList(QDir::Files))
            ASSERT_TRUE(QFile::remove(files().filePath(name)));
        const auto first = save(user, u"c"_s);
        ASSERT_TRUE(first);
        damage(bytes);
        const auto read = cache.read(user, u"c"_s);
        EXPECT_EQ(read.error().kind, Kind::unreadable);
        EXPECT_EQ(read.error().reason, u"本机草稿暂时无法读取，请稍后刷新；已保存的文件不会被删除。"_s);
        EXPECT_FALSE(cache.remove(user, u"c"_s, *first));
        EXPECT_EQ(cache.list(user)->unreadable, 1);

        // A new draft goes into its place, and the old bytes beside it.
        ASSERT_TRUE(save(user, u"c"_s, u"新"_s));
        EXPECT_EQ((*cache.read(user, u"c"_s))->snapshot.title, u"新"_s);
        const auto aside = files().entryList({u"*.unreadable"_s});
        ASSERT_EQ(aside.size(), 1);
        QFile kept(files().filePath(aside[0]));
        ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
        EXPECT_EQ(kept.readAll(), bytes);
        const auto listing = cache.list(user);
        EXPECT_EQ(listing->unreadable, 1);
        EXPECT_EQ(listing->entries.size(), 1);
    }
    EXPECT_EQ(ConversationTexts::draftsKeptUnread(2), u"2 份本机草稿暂时无法读取，原文件已保留。"_s);
}

TEST_F(ConversationDraftCacheTest, OneWindowNeverOverwritesAnother) {
    const auto mine = save(user, u"c"_s, u"一"_s, {});
    const auto theirs = save(user, u"c"_s, u"二"_s, *mine);
    ASSERT_TRUE(theirs);
    for (const auto &known : {std::optional<QString>(), std::optional(*mine)})
        EXPECT_EQ(save(user, u"c"_s, u"三"_s, known).error().kind, Kind::changedElsewhere);
    EXPECT_EQ(cache.remove(user, u"c"_s, *mine).error().kind, Kind::changedElsewhere);
    EXPECT_EQ((*cache.read(user, u"c"_s))->snapshot.title, u"二"_s);
    ASSERT_TRUE(cache.remove(user, u"c"_s, *theirs));
    EXPECT_FALSE(cache.read(user, u"c"_s)->has_value());
    EXPECT_TRUE(cache.remove(user, u"c"_s, *theirs)) << "what is gone is gone";
    EXPECT_TRUE(save(user, u"c"_s, u"三"_s, *mine)) << "nothing is there that could be lost";
}

TEST_F(ConversationDraftCacheTest, ListsTheAccountsOwnNewestFirst) {
    ASSERT_TRUE(save(user, u"a"_s));
    ASSERT_TRUE(save(user, u"b"_s));
    ASSERT_TRUE(save(u"u2"_s, u"c"_s));
    const auto listing = cache.list(user);
    ASSERT_TRUE(listing);
    ASSERT_EQ(listing->entries.size(), 2);
    EXPECT_EQ(listing->entries[0].snapshot.id, u"b"_s);
    EXPECT_EQ(listing->entries[1].snapshot.id, u"a"_s);
    EXPECT_EQ(listing->unreadable, 0);
}

TEST_F(ConversationDraftCacheTest, AFolderThatCannotBeIsAnErrorAndNoLoss) {
    QFile inTheWay(folder.filePath(u"ConversationDrafts"_s));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_EQ(save(user, u"c"_s).error().kind, Kind::storage);
    EXPECT_EQ(cache.list(user).error().kind, Kind::storage);
}

} // namespace lmp
