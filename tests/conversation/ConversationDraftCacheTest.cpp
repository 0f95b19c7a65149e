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
    ConversationDraftCache::Entry entry(const QString &id, const QString &title = {}) {
        ConversationDTO snapshot;
        snapshot.id = id;
        snapshot.title = title;
        clock.advance(std::chrono::seconds(1));
        return ConversationDraftCache::entry(snapshot, clock.now());
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
};

TEST_F(ConversationDraftCacheTest, OnePrivateFileForEachPair) {
    ASSERT_TRUE(cache.save(user, entry(u"c"_s, u"一"_s)));
    ASSERT_TRUE(cache.save(user, entry(u"c"_s, u"二"_s)));
    // Run together, these are the same text; they are not the same conversation.
    ASSERT_TRUE(cache.save(u"a"_s, entry(u"bc"_s)));
    ASSERT_TRUE(cache.save(u"ab"_s, entry(u"c"_s)));
    const auto names = files().entryInfoList(QDir::Files | QDir::Hidden);
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
        EXPECT_EQ(cache.save(nobody, entry(u"c"_s)).error().kind, Kind::missingAccount);
        EXPECT_EQ(cache.read(nobody, u"c"_s).error().kind, Kind::missingAccount);
        EXPECT_EQ(cache.list(nobody).error().kind, Kind::missingAccount);
    }
    EXPECT_EQ(cache.save(user, entry({})).error().kind, Kind::invalidConversation);
    EXPECT_FALSE(QFile::exists(folder.filePath(u"ConversationDrafts"_s)));
}

TEST_F(ConversationDraftCacheTest, WhatCannotBeReadStays) {
    const QByteArray broken[] = {"", "{", "[]", R"({"writeId":"w","updatedAt":"d"})", QByteArray(100, '\0')};
    for (const QByteArray &bytes : broken) {
        for (const QString &name : files().entryList(QDir::Files))
            ASSERT_TRUE(QFile::remove(files().filePath(name)));
        const auto first = entry(u"c"_s);
        ASSERT_TRUE(cache.save(user, first));
        damage(bytes);
        const auto read = cache.read(user, u"c"_s);
        EXPECT_EQ(read.error().kind, Kind::unreadable);
        EXPECT_EQ(read.error().reason, u"本机草稿暂时无法读取，请稍后刷新；已保存的文件不会被删除。"_s);
        EXPECT_FALSE(cache.remove(user, u"c"_s, first.writeId));
        EXPECT_EQ(cache.list(user)->unreadable, 1);

        // A new draft goes into its place, and the old bytes beside it.
        ASSERT_TRUE(cache.save(user, entry(u"c"_s, u"新"_s)));
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

TEST_F(ConversationDraftCacheTest, RemovesOnlyTheWriteItMeans) {
    const auto old = entry(u"c"_s), current = entry(u"c"_s);
    ASSERT_TRUE(cache.save(user, old));
    ASSERT_TRUE(cache.save(user, current));
    ASSERT_TRUE(cache.remove(user, u"c"_s, old.writeId));
    EXPECT_TRUE(cache.read(user, u"c"_s)->has_value());
    ASSERT_TRUE(cache.remove(user, u"c"_s, current.writeId));
    EXPECT_FALSE(cache.read(user, u"c"_s)->has_value());
    EXPECT_TRUE(cache.remove(user, u"c"_s, current.writeId));
}

TEST_F(ConversationDraftCacheTest, ListsTheAccountsOwnNewestFirst) {
    ASSERT_TRUE(cache.save(user, entry(u"a"_s)));
    ASSERT_TRUE(cache.save(user, entry(u"b"_s)));
    ASSERT_TRUE(cache.save(u"u2"_s, entry(u"c"_s)));
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
    EXPECT_EQ(cache.save(user, entry(u"c"_s)).error().kind, Kind::storage);
    EXPECT_EQ(cache.list(user).error().kind, Kind::storage);
}

} // namespace lmp
