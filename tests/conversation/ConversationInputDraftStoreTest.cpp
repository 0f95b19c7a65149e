#include "conversation/ConversationInputDraftStore.h"

#include "support/ManualClock.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <functional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;
using Store = ConversationInputDraftStore;
using Error = Store::StoreError;

class ConversationInputDraftStoreTest : public ::testing::Test {
protected:
    static Store::Entry entry(const QString &id, const QString &text) {
        Store::Entry entry;
        entry.id = id;
        entry.cloudRevision = 3;
        entry.input.text = text;
        return entry;
    }
    Store::Outcome<std::optional<QString>> save(const Store::Entry &entry, const std::optional<QString> &known) {
        clock.advance(std::chrono::seconds(1));
        return store.save(user, entry, known, clock.now());
    }
    QStringList files() const {
        return QDir(folder.filePath(u"UnsentInput/v1"_s)).entryList(QDir::Files); // the lock is a hidden one
    }
    void damage(const QByteArray &bytes) {
        QFile file(folder.filePath(u"UnsentInput/v1/"_s + files().value(0)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir folder;
    ManualClock clock;
    Store store{ApplicationSupport::at(folder.path())};
    const QString user = u"u1"_s;
};

TEST_F(ConversationInputDraftStoreTest, KeepsReplacesAndForgets) {
    EXPECT_EQ(save(entry(u"c"_s, {}), {}).value(), std::nullopt) << "nothing to keep, nothing there";
    EXPECT_EQ(files(), QStringList());
    auto full = entry(u"c"_s, u"半句"_s);
    full.input.parts.resize(2);
    full.input.selection.emplace().workId = u"w"_s;
    full.input.retryMessageId = u"m"_s;
    const auto first = save(full, {});
    ASSERT_TRUE(first && *first);
    const auto read = store.read(user, u"c"_s);
    ASSERT_TRUE(read && *read);
    EXPECT_EQ((*read)->input, full.input);
    EXPECT_EQ((*read)->writeId, *first);
    EXPECT_EQ(store.read(u"u2"_s, u"c"_s).value(), std::nullopt) << "another account's";

    const auto second = save(entry(u"c"_s, u"一句"_s), *first);
    ASSERT_TRUE(second);
    ASSERT_TRUE(save(entry(u"d"_s, u"另一段"_s), {}));
    const auto listing = store.list(user);
    ASSERT_TRUE(listing);
    ASSERT_EQ(listing->entries.size(), 2);
    EXPECT_EQ(listing->entries[0].id, u"d"_s) << "newest first";
    EXPECT_EQ(store.list(u"u2"_s)->entries.size(), 0);

    EXPECT_EQ(save(entry(u"c"_s, {}), *second).value(), std::nullopt);
    EXPECT_EQ(files().size(), 1);
}

TEST_F(ConversationInputDraftStoreTest, OneWindowNeverOverwritesAnother) {
    const auto mine = save(entry(u"c"_s, u"我"_s), {});
    const auto theirs = save(entry(u"c"_s, u"他"_s), *mine);
    ASSERT_TRUE(theirs);
    for (const auto &known : {std::optional<QString>(), *mine}) {
        for (const QString &text : {u"我又写"_s, u""_s})
            EXPECT_EQ(save(entry(u"c"_s, text), known), std::unexpected(Error::changedElsewhere));
    }
    EXPECT_EQ((*store.read(user, u"c"_s))->input.text, u"他"_s);
    // What the other window has sent is gone; what was typed here since is not.
    ASSERT_TRUE(save(entry(u"c"_s, {}), *theirs));
    EXPECT_TRUE(save(entry(u"c"_s, u"我又写"_s), *mine));
}

TEST_F(ConversationInputDraftStoreTest, RefusesWhatCannotBeKept) {
    EXPECT_EQ(save(entry({}, u"x"_s), {}), std::unexpected(Error::invalidEntry));
    EXPECT_EQ(store.save({}, entry(u"c"_s, u"x"_s), {}, clock.now()), std::unexpected(Error::invalidScope));
    EXPECT_EQ(store.read(user, {}), std::unexpected(Error::invalidScope));
    EXPECT_EQ(files(), QStringList());
    ASSERT_TRUE(save(entry(u"s"_s, u"x"_s), {}));
    const qsizetype around = QFile(folder.filePath(u"UnsentInput/v1/"_s + files().value(0))).size() - 1;
    EXPECT_EQ(save(entry(u"l"_s, QString(Store::maxBytes - around + 1, u'x')), {}), std::unexpected(Error::tooLarge));
    EXPECT_TRUE(save(entry(u"l"_s, QString(Store::maxBytes - around, u'x')), {}));
}

TEST_F(ConversationInputDraftStoreTest, WhatCannotBeReadStays) {
    ASSERT_TRUE(save(entry(u"c"_s, u"x"_s), {}));
    for (const QByteArray &bytes : {QByteArray(), QByteArray("{\"id\":"), QByteArray(R"({"id":"c","input":7})")}) {
        damage(bytes);
        EXPECT_EQ(store.read(user, u"c"_s), std::unexpected(Error::unreadable));
        EXPECT_EQ(save(entry(u"c"_s, {}), {}), std::unexpected(Error::unreadable)) << "nothing to write, nothing moved";
        EXPECT_EQ(store.list(user)->unreadable, 1);
        EXPECT_EQ(files().size(), 1);
    }
    const auto saved = save(entry(u"c"_s, u"新"_s), {});
    ASSERT_TRUE(saved);
    EXPECT_EQ(files().size(), 2) << "the old one lies beside";
    EXPECT_EQ(store.list(user)->unreadable, 1);
    EXPECT_EQ((*store.read(user, u"c"_s))->input.text, u"新"_s);
}

TEST_F(ConversationInputDraftStoreTest, WhatWasMovedAsideIsItsAccounts) {
    ASSERT_TRUE(save(entry(u"c"_s, u"x"_s), {}));
    damage("{");
    EXPECT_EQ(store.list(u"u2"_s)->unreadable, 1) << "whose it is cannot be known";
    ASSERT_TRUE(save(entry(u"c"_s, u"新"_s), {}));
    const auto mine = store.list(user);
    ASSERT_EQ(mine->spoilt.size(), 1);
    EXPECT_EQ(AtomicFile::read(mine->spoilt[0]), QByteArray("{"));
    EXPECT_EQ(store.list(u"u2"_s)->unreadable, 0);
    ASSERT_TRUE(QFile::remove(mine->spoilt[0]));
    EXPECT_EQ(store.list(user)->unreadable, 0);
}

TEST_F(ConversationInputDraftStoreTest, WhoHasReadNothingReplacesNothing) {
    ASSERT_TRUE(save(entry(u"c"_s, u"x"_s), {}));
    damage(
        R"({"id":"c","title":"","cloudRevision":0,"updatedAt":"","input":{"text":"手写的","parts":[],"intent":""}})");
    EXPECT_EQ(save(entry(u"c"_s, u"新"_s), {}), std::unexpected(Error::changedElsewhere));
    EXPECT_EQ(save(entry(u"c"_s, {}), {}), std::unexpected(Error::changedElsewhere));
    const auto read = store.read(user, u"c"_s).value();
    EXPECT_EQ(read->input.text, u"手写的"_s);
    EXPECT_TRUE(save(entry(u"c"_s, u"新"_s), read->writeId)) << "whoever has read it may";
}

TEST_F(ConversationInputDraftStoreTest, EachServiceHasItsOwn) {
    const Store other(ApplicationSupport::at(folder.path()), u"https://other.invalid"_s);
    ASSERT_TRUE(save(entry(u"c"_s, u"这里的"_s), {}));
    EXPECT_EQ(other.read(user, u"c"_s).value(), std::nullopt);
    EXPECT_TRUE(other.list(user)->entries.isEmpty());
    ASSERT_TRUE(other.save(user, entry(u"c"_s, u"那里的"_s), {}, clock.now()));
    EXPECT_EQ(store.read(user, u"c"_s).value()->input.text, u"这里的"_s);
    EXPECT_EQ(store.list(user)->entries.size(), 1);
}

TEST_F(ConversationInputDraftStoreTest, CopiesAreToldApart) {
    const QString one = Store::copyId(u"c"_s), other = Store::copyId(u"c"_s);
    EXPECT_NE(one, other);
    for (const auto &[id, original] :
         std::initializer_list<std::pair<QString, QString>>{{one, u"c"_s},
                                                            {u"c copy"_s, u"c"_s},
                                                            {u"c"_s, u"c"_s},
                                                            {u"c copying"_s, u"c copying"_s},
                                                            {u" copy"_s, u" copy"_s}})
        EXPECT_EQ(Store::originalId(id), original) << id.toStdString();
}

TEST_F(ConversationInputDraftStoreTest, WhatIsNoneOfOursIsNeitherReadNorReplaced) {
    ASSERT_TRUE(save(entry(u"c"_s, u"我的"_s), {}));
    const QString path = folder.filePath(u"UnsentInput/v1/"_s + files().value(0));
    const QByteArray name = QFile::encodeName(path), beside = QFile::encodeName(folder.filePath(u"beside"_s));
    const QByteArray mine = *AtomicFile::read(path);
    struct Case {
        const char *what;
        std::function<bool()> make;
        bool read; ///< whether it counts as ours
    };
    const bool root = ::geteuid() == 0;
    for (const Case &c : std::initializer_list<Case>{
             {"others may read it", [&] { return ::chmod(name.constData(), 0644) == 0; }, true},
             {"others may write it", [&] { return ::chmod(name.constData(), 0666) == 0; }, false},
             {"somebody else's", [&] { return !root || ::chown(name.constData(), 65534, 65534) == 0; }, !root},
             {"a symbolic link",
              [&] {
                  return ::rename(name.constData(), beside.constData()) == 0 &&
                         ::symlink(beside.constData(), name.constData()) == 0;
              },
              false},
             {"a folder", [&] { return ::unlink(name.constData()) == 0 && ::mkdir(name.constData(), 0700) == 0; },
              false},
         }) {
        SCOPED_TRACE(c.what);
        QDir(folder.filePath(u"UnsentInput"_s)).removeRecursively();
        ASSERT_TRUE(save(entry(u"c"_s, u"我的"_s), {}));
        ASSERT_TRUE(c.make());
        const auto read = store.read(user, u"c"_s);
        EXPECT_EQ(read.has_value(), c.read);
        EXPECT_EQ(store.list(user)->unreadable, c.read ? 0 : 1);
        if (c.read) {
            EXPECT_EQ(QFile(path).permissions() & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
            continue;
        }
        EXPECT_EQ(read.error(), Error::unreadable);
        ASSERT_TRUE(save(entry(u"c"_s, u"新"_s), {}));
        EXPECT_EQ((*store.read(user, u"c"_s))->input.text, u"新"_s);
        EXPECT_EQ(store.list(user)->unreadable, 1) << "what was there is still there, beside";
    }
    // What the link led to was not touched.
    EXPECT_EQ(AtomicFile::read(QFile::decodeName(beside))->size(), mine.size());
}

TEST_F(ConversationInputDraftStoreTest, FoldersThatRefuse) {
    const QString path = folder.filePath(u"UnsentInput/v1"_s);
    const auto saved = save(entry(u"c"_s, u"旧"_s), {});
    ASSERT_TRUE(saved);
    // Open to others, it is closed to them.
    QFile::setPermissions(path, QFile::Permissions(0x7755));
    EXPECT_TRUE(store.read(user, u"c"_s));
    EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ExeOther), QFile::Permissions());
    // Root may write anywhere, so it becomes somebody else for a moment, whose folder this is.
    const bool root = ::geteuid() == 0;
    const QByteArray name = QFile::encodeName(path), file = name + '/' + files().value(0).toUtf8();
    const uid_t owner = root ? 65534 : ::geteuid();
    ASSERT_TRUE(::chown(file.constData(), owner, gid_t(-1)) == 0 && ::chown(name.constData(), owner, gid_t(-1)) == 0);
    ASSERT_TRUE(::chmod(name.constData(), 0500) == 0 &&
                ::chmod(QFile::encodeName(folder.path()).constData(), 0755) == 0);
    ASSERT_TRUE(!root || ::seteuid(owner) == 0);
    const auto refused = save(entry(u"c"_s, u"新"_s), *saved);
    ASSERT_TRUE(!root || ::seteuid(0) == 0);
    EXPECT_EQ(refused, std::unexpected(Error::storage));
    EXPECT_TRUE(AtomicFile::read(QFile::decodeName(file))->contains("旧"));
    EXPECT_EQ(Store::describe(Error::storage), u"这段输入未能保存在本机，请不要关闭窗口。"_s);

    // A folder that went away is made again; a clock that jumps back costs nothing.
    ASSERT_TRUE(QDir(path).removeRecursively());
    const auto later = store.save(user, entry(u"c"_s, u"后"_s), *saved, QDateTime::currentDateTimeUtc());
    ASSERT_TRUE(later);
    const auto before = store.save(user, entry(u"c"_s, u"更后"_s), *later, QDateTime::fromSecsSinceEpoch(0));
    ASSERT_TRUE(before);
    EXPECT_EQ((*store.read(user, u"c"_s))->input.text, u"更后"_s);
    EXPECT_EQ((*store.read(user, u"c"_s))->writeId, *before);
}

TEST_F(ConversationInputDraftStoreTest, ManyWritersLoseNothing) {
    // Each adds its letter to what it last saw; a save that landed is seen by everyone after it.
    constexpr int writers = 4, saves = 25;
    std::vector<std::thread> threads;
    for (int writer = 0; writer < writers; ++writer)
        threads.emplace_back([this, writer] {
            for (int done = 0; done < saves;) {
                const auto now = store.read(user, u"c"_s);
                if (!now)
                    continue;
                auto next = *now ? **now : entry(u"c"_s, {});
                const auto known = next.writeId;
                next.input.text += QChar(u'a' + writer);
                const auto saved = store.save(user, next, known, clock.now());
                done += saved ? 1 : 0;
                EXPECT_TRUE(saved || saved.error() == Error::changedElsewhere);
            }
        });
    for (auto &thread : threads)
        thread.join();
    const QString text = (*store.read(user, u"c"_s))->input.text;
    for (int writer = 0; writer < writers; ++writer)
        EXPECT_EQ(text.count(QChar(u'a' + writer)), saves);
}

} // namespace lmp
