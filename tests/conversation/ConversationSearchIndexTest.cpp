#include "conversation/ConversationSearchIndex.h"
#include "conversation/SearchExcerpt.h"
#include "core/SearchFold.h"

#include <gtest/gtest.h>

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <sys/stat.h>

namespace lmp {

using namespace Qt::StringLiterals;
using Age = ConversationSearchIndex::Age;
using Fault = ConversationSearchIndex::Fault;

namespace {

ConversationDTO conversation(const QString &id, const QStringList &texts) {
    ConversationDTO made;
    made.id = id;
    made.title = u"题 "_s + id;
    for (const QString &text : texts) {
        ConvMessageDTO message;
        message.id = id + QString::number(made.messages.size());
        message.role = made.messages.size() % 2 ? TalkRole::twin : TalkRole::user;
        message.text = text;
        made.messages.push_back(message);
    }
    return made;
}

QList<ConversationSummaryDTO> summaries(const QStringList &ids) {
    QList<ConversationSummaryDTO> made;
    for (const QString &id : ids) {
        ConversationSummaryDTO summary;
        summary.id = id;
        summary.title = u"新题 "_s + id;
        made.push_back(summary);
    }
    return made;
}

} // namespace

TEST(SearchTermsTest, WhatIsFoundInWhat) {
    struct Case {
        QString text, typed;
        QList<SearchTerms::Range> ranges;
    };
    for (const auto &[text, typed, ranges] : std::initializer_list<Case>{
             {u"我喜欢喝茶"_s, u"茶"_s, {{4, 1}}},
             {u"用Python写，ＰＹＴＨＯＮ好"_s, u"python"_s, {{1, 6}, {9, 6}}},
             {u"一二一二三"_s, u"一二三"_s, {{2, 3}}},
             {u"先喝茶再开会"_s, u" 开会　茶 "_s, {{2, 1}, {4, 2}}},
             {u"先喝茶"_s, u"茶 会"_s, {}},
             {u"一共 ㎏ 三"_s, u"kg"_s, {{3, 1}}},
             {u"一共 ㎏ 三"_s, u"k"_s, {{3, 1}}},
             {u"cafe\u0301 好"_s, u"é"_s, {{3, 2}}},
             {u"行一\n\n行二"_s, u"行一 行二"_s, {{0, 2}, {4, 2}}},
             {u"软\u200b件"_s, u"软件"_s, {{0, 3}}},
             {u"好😀吗"_s, u"😀"_s, {{1, 2}}},
             {u"aaaa"_s, u"aa a"_s, {{0, 4}}},
             {u"什么"_s, u"  "_s, {}},
         })
        EXPECT_EQ(SearchTerms(typed).ranges(text), ranges) << text.toStdString() << " / " << typed.toStdString();
}

TEST(SearchExcerptTest, OneLineAroundTheFirstMatch) {
    const SearchTerms terms(u"茶"_s);
    EXPECT_EQ(SearchExcerpt::around(u"喝\n茶"_s, terms, TalkRole::user), u"喝 茶"_s);
    const QString far = SearchExcerpt::around(QString(30'000, u'水') + u"👨‍👩‍👧茶"_s + QString(500, u'火'),
                                              terms, TalkRole::user);
    EXPECT_TRUE(far.startsWith(u"…水") && far.endsWith(u"火…") && far.contains(u"👨‍👩‍👧茶"))
        << far.toStdString();
    EXPECT_LE(far.size(), SearchExcerpt::most + 2);
}

TEST(SearchExcerptTest, AReplyIsShownAsItIsRead) {
    const SearchTerms terms(u"茶"_s);
    const QString reply =
        u"## 泡茶\n\n- [ ] 水到 **80 度**，看[这一篇](https://example.com/a_b)\n> 用 `cha` ~~不~~ 2 * 3 * 4"_s;
    EXPECT_EQ(SearchExcerpt::around(reply, terms, TalkRole::twin), u"泡茶 水到 80 度，看这一篇 用 cha 不 2 * 3 * 4"_s);
    EXPECT_EQ(SearchExcerpt::around(u"**茶**"_s, terms, TalkRole::user), u"**茶**"_s);
    // The signs themselves, and what only a link's address holds, are found all the same.
    EXPECT_EQ(SearchExcerpt::around(u"**茶**"_s, SearchTerms(u"**茶"_s), TalkRole::twin), u"**茶**"_s);
    EXPECT_TRUE(SearchExcerpt::around(u"[绿茶](https://example.com/cha)"_s, SearchTerms(u"cha"_s), TalkRole::twin)
                    .contains(u"cha"_s));
    // Much of what stands before a match may be marks.
    const QString linked = SearchExcerpt::around(
        u"[火](https://example.com/"_s + QString(200, u'x') + u") 茶"_s + QString(500, u'水'), terms, TalkRole::twin);
    EXPECT_TRUE(linked.contains(u"茶水"_s) && linked.size() <= SearchExcerpt::most + 2) << linked.toStdString();
}

class ConversationSearchIndexTest : public ::testing::Test {
protected:
    void put(const ConversationDTO &one, Age age = Age::latest) {
        for (int calls = 0; calls < 50; ++calls) {
            const auto done = index.put(one, age);
            ASSERT_TRUE(done);
            if (*done)
                return;
        }
        FAIL() << "it does not end";
    }
    /// The ids of the messages found, the latest first.
    QStringList found(const QString &typed) {
        const auto page = index.find(SearchTerms(typed), {}, 1000);
        QStringList ids;
        if (page) {
            for (const auto &hit : page->hits)
                ids << hit.messageId;
            EXPECT_EQ(page->total, ids.size());
        }
        return page ? ids : QStringList{u"failed"_s};
    }
    void overwrite(const QByteArray &bytes) {
        QFile file(index.path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    /// Whether `text` is anywhere in the files, as it is written.
    bool leavesTraces(const QString &text) const {
        const auto files = QDir(folder.path()).entryInfoList(QDir::Files);
        return std::ranges::any_of(files, [&](const QFileInfo &info) {
            QFile file(info.filePath());
            return file.open(QIODevice::ReadOnly) && file.readAll().contains(text.toUtf8());
        });
    }

    QTemporaryDir folder;
    ConversationSearchIndex index{folder.filePath(u"index.sqlite"_s)};
};

TEST_F(ConversationSearchIndexTest, FindsEveryRunOfCharacters) {
    put(conversation(u"a"_s, {u"我喜欢喝龙井茶"_s, u"龙井，好茶。C++ 和 100% 都行"_s}));
    put(conversation(u"b"_s, {u"Ｐｙｔｈｏｎ 老师 \"引\" 'a_b' ('x*')"_s, u"𠮷野家"_s, QString()}));
    for (const auto &[typed, ids] : std::initializer_list<std::pair<QString, QStringList>>{
             {u"茶"_s, {u"a1"_s, u"a0"_s}},
             {u"龙井"_s, {u"a1"_s, u"a0"_s}},
             {u"龙井茶"_s, {u"a0"_s}},
             {u"喜欢喝龙井"_s, {u"a0"_s}},
             {u"茶 好"_s, {u"a1"_s}},
             {u"好茶龙"_s, {}},
             {u"PY"_s, {u"b0"_s}},
             {u"thon"_s, {u"b0"_s}},
             {u"c++"_s, {u"a1"_s}},
             {u"100%"_s, {u"a1"_s}},
             {u"%"_s, {u"a1"_s}},
             {u"\""_s, {u"b0"_s}},
             {u"'a_b'"_s, {u"b0"_s}},
             {u"x*"_s, {u"b0"_s}},
             {u"AND"_s, {}},
             {u"𠮷"_s, {u"b1"_s}},
             {u"𠮷野家"_s, {u"b1"_s}},
             {u""_s, {}},
         })
        EXPECT_EQ(found(typed), ids) << typed.toStdString();
    const auto page = index.find(SearchTerms(u"茶"_s), {}, 1);
    ASSERT_TRUE(page);
    EXPECT_TRUE(page->more);
    EXPECT_EQ(page->total, 2);
    EXPECT_EQ(page->hits.first().title, u"题 a"_s);
    EXPECT_EQ(page->hits.first().role, TalkRole::twin);
    const auto next = index.find(SearchTerms(u"茶"_s), page->hits.first().place, 1);
    ASSERT_TRUE(next && next->hits.size() == 1);
    EXPECT_EQ(next->hits.first().messageId, u"a0"_s);
    EXPECT_FALSE(next->more);
}

TEST_F(ConversationSearchIndexTest, FollowsWhatAConversationBecomes) {
    put(conversation(u"a"_s, {u"水一"_s, u"水二"_s}));
    put(conversation(u"old"_s, {u"水旧"_s}), Age::older);
    put(conversation(u"older"_s, {u"水更旧"_s, u"水"_s}), Age::older);
    EXPECT_EQ(found(u"水"_s), (QStringList{u"a1"_s, u"a0"_s, u"old0"_s, u"older1"_s, u"older0"_s}));
    put(conversation(u"old"_s, {u"水旧"_s, u"水新"_s}), Age::older);
    EXPECT_EQ(found(u"水"_s).first(), u"old1"_s) << "there is no room below: it is the latest";
    auto changed = conversation(u"a"_s, {u"水一"_s, u"火二"_s, u"水三"_s});
    put(changed);
    EXPECT_EQ(found(u"火二"_s), QStringList{u"a1"_s});
    EXPECT_EQ(found(u"二"_s), QStringList{u"a1"_s});
    changed.messages.removeFirst();
    put(changed);
    EXPECT_EQ(found(u"一"_s), QStringList());
    EXPECT_EQ(found(u"三"_s), QStringList{u"a2"_s});
    put(conversation(u"a"_s, {}));
    EXPECT_EQ(found(u"三"_s), QStringList());
    // Longer than a batch: each call writes some, in order.
    QStringList many;
    for (int i = 0; i < 350; ++i)
        many << u"雪 %1"_s.arg(i);
    put(conversation(u"long"_s, many), Age::older);
    const auto snow = found(u"雪"_s);
    ASSERT_EQ(snow.size(), 350);
    EXPECT_EQ(snow.first(), u"long349"_s);
    EXPECT_TRUE(std::ranges::is_sorted(snow, {}, [](const QString &id) { return -QStringView(id).sliced(4).toInt(); }));
}

TEST_F(ConversationSearchIndexTest, ARemovedConversationLeavesNoTraces) {
    put(conversation(u"a"_s, {u"琵琶行"_s, u"琵琶"_s}));
    put(conversation(u"b"_s, {u"长恨歌"_s}));
    ASSERT_TRUE(leavesTraces(u"琵琶行"_s));
    EXPECT_TRUE(index.tidy().value_or(false)) << "there is nothing to tidy away";
    ASSERT_TRUE(index.remove(u"a"_s));
    EXPECT_EQ(found(u"琵"_s), QStringList());
    EXPECT_EQ(found(u"恨"_s), QStringList{u"b0"_s});
    EXPECT_TRUE(leavesTraces(u"琵琶"_s)) << "until it is tidied away";
    // The program may end in between.
    ConversationSearchIndex later(index.path());
    for (int calls = 0; !later.tidy().value_or(true); ++calls)
        ASSERT_LT(calls, 1000);
    EXPECT_FALSE(leavesTraces(u"琵琶行"_s));
    EXPECT_FALSE(leavesTraces(u"琵琶"_s)) << "among the grams";
    EXPECT_EQ(found(u"恨"_s), QStringList{u"b0"_s});
}

TEST_F(ConversationSearchIndexTest, WhatIsNotThereIsRemovedWithoutWriting) {
    put(conversation(u"a"_s, {u"水"_s}));
    sqlite3 *other = nullptr;
    ASSERT_EQ(sqlite3_open(QFile::encodeName(index.path()).constData(), &other), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    EXPECT_TRUE(index.remove(u"nobody"_s));
    EXPECT_FALSE(index.holds(u"nobody"_s).value_or(true));
    EXPECT_TRUE(index.holds(u"a"_s).value_or(false));
    sqlite3_close(other);
}

TEST_F(ConversationSearchIndexTest, AQuestionEndsAfterSoManyMessages) {
    // The grams of the word are everywhere, the word itself in the oldest message alone.
    put(conversation(u"z"_s, {u"一二三四"_s}));
    const int conversations = int(ConversationSearchIndex::looks / 100) + 1;
    for (int c = 0; c < conversations; ++c)
        put(conversation(QString::number(c) + u'-', QStringList(100, u"一二三 二三四"_s)));
    const SearchTerms terms(u"一二三四"_s);
    const auto first = index.find(terms, {}, 50);
    ASSERT_TRUE(first);
    EXPECT_TRUE(first->hits.isEmpty());
    EXPECT_TRUE(first->more && first->totalIsAtLeast);
    const auto second = index.find(terms, first->reached, 50);
    ASSERT_TRUE(second && second->hits.size() == 1);
    EXPECT_EQ(second->hits.first().messageId, u"z0"_s);
    EXPECT_FALSE(second->more || second->totalIsAtLeast);
}

TEST_F(ConversationSearchIndexTest, PlansWhatToFetch) {
    const auto plan = [&](const QStringList &ids, const QSet<QString> &kept = {}, const QSet<QString> &fresh = {}) {
        return index.plan(summaries(ids), kept, fresh).value_or(ConversationSearchIndex::Plan());
    };
    EXPECT_EQ(plan({u"c"_s, u"b"_s, u"a"_s}).wanted, (QStringList{u"c"_s, u"b"_s, u"a"_s}));
    for (const QString &id : {u"a"_s, u"b"_s, u"c"_s, u"d"_s})
        put(conversation(id, {u"水"_s}));
    EXPECT_EQ(plan({u"c"_s, u"b"_s, u"a"_s}, {u"d"_s}).wanted, QStringList());
    EXPECT_EQ(plan({u"a"_s, u"c"_s, u"b"_s}, {u"d"_s}).wanted, QStringList{u"a"_s}) << "changed on another machine";
    EXPECT_EQ(plan({u"b"_s, u"a"_s, u"c"_s}, {u"d"_s}, {u"b"_s}).wanted, QStringList()) << "changed by ourselves";
    EXPECT_EQ(found(u"水"_s).size(), 4);
    const auto last = plan({u"e"_s, u"b"_s});
    EXPECT_EQ(last.wanted, QStringList{u"e"_s});
    EXPECT_EQ(last.missing, QSet<QString>{u"e"_s});
    EXPECT_EQ(found(u"水"_s), QStringList{u"b0"_s}) << "what neither the service nor this machine has is gone";
    EXPECT_EQ(index.find(SearchTerms(u"水"_s), {}, 1)->hits.first().title, u"新题 b"_s);
}

TEST_F(ConversationSearchIndexTest, DamageIsNoticedAndMadeGood) {
    const auto fill = [&] {
        put(conversation(u"a"_s, QStringList(60, u"水"_s + QString(300, u'字'))));
    };
    const auto whole = [&] {
        fill();
        index.discard();
        fill();
        ConversationSearchIndex other(index.path()); // the last to close writes everything into the file itself
        EXPECT_TRUE(other.open());
    };
    whole();
    const auto bytes = [&] {
        ConversationSearchIndex copy(folder.filePath(u"copy.sqlite"_s));
        copy.discard();
        EXPECT_TRUE(copy.put(conversation(u"a"_s, QStringList(60, u"水"_s + QString(300, u'字'))), Age::latest));
        return copy.path();
    }();
    QFile file(bytes);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray sound = file.readAll();
    ASSERT_GT(sound.size(), 8192);
    QByteArray otherVersion = sound;
    otherVersion[63] = 99;
    QByteArray otherProgram = sound;
    otherProgram[70] = 'x';
    QByteArray scrambled = sound;
    scrambled.replace(4096, sound.size() - 4096, QByteArray(sound.size() - 4096, 'x'));
    for (const auto &[name, content] : std::initializer_list<std::pair<const char *, QByteArray>>{
             {"no database", QByteArray(5000, 'x')},
             {"cut short", sound.first(4096)},
             {"cut in the middle of a page", sound.first(sound.size() / 2 + 100)},
             {"another version", otherVersion},
             {"another program's", otherProgram},
             {"pages of nonsense", scrambled}}) {
        SCOPED_TRACE(name);
        index.discard();
        overwrite(content);
        const auto page = index.find(SearchTerms(u"水"_s), {}, 10);
        ASSERT_FALSE(page);
        EXPECT_EQ(page.error(), Fault::damaged);
        index.discard();
        fill();
        EXPECT_EQ(found(u"水"_s).size(), 60);
    }
    index.discard();
    overwrite({});
    EXPECT_EQ(found(u"水"_s), QStringList()) << "an empty file is a fresh one";
    // One page of nonsense, among the grams and elsewhere: what is answered is right, or it is noticed.
    const qsizetype page = 4096;
    int noticed = 0;
    for (qsizetype at = page; at + page <= sound.size(); at += page) {
        SCOPED_TRACE(at / page);
        QByteArray torn = sound;
        torn.replace(at, page, QByteArray(page, 'x'));
        index.discard();
        overwrite(torn);
        const auto answer = index.find(SearchTerms(u"水"_s), {}, 100);
        noticed += !answer;
        EXPECT_TRUE(answer ? answer->hits.size() == 60 : answer.error() == Fault::damaged);
    }
    EXPECT_GT(noticed, 0);
}

TEST_F(ConversationSearchIndexTest, TheWholeFileIsReadAfterABadEndAlone) {
    const QString path = folder.filePath(u"whole.sqlite"_s);
    {
        ConversationSearchIndex filled(path);
        ASSERT_TRUE(filled.put(conversation(u"a"_s, QStringList(60, u"水"_s + QString(300, u'字'))), Age::latest));
    }
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(file.size() - 4096));
    file.write(QByteArray(4096, 'x'));
    file.close();
    auto other = std::make_unique<ConversationSearchIndex>(path);
    EXPECT_TRUE(other->open()) << "nobody waits for the whole file to be read";
    const auto leaveLog = [&] {
        QFile log(path + u"-wal"_s);
        ASSERT_TRUE(log.open(QIODevice::WriteOnly));
        log.write(QByteArray(5000, 'x'));
    };
    leaveLog();
    EXPECT_TRUE(ConversationSearchIndex(path).open()) << "the log is that of the one who has it open";
    other.reset();
    leaveLog();
    const auto opened = ConversationSearchIndex(path).open();
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error(), Fault::damaged);
}

TEST_F(ConversationSearchIndexTest, PrivateAndNoLink) {
    put(conversation(u"a"_s, {u"水"_s}));
    for (const auto &info : QDir(folder.path()).entryInfoList(QDir::Files)) {
        struct stat status = {};
        ASSERT_EQ(::stat(QFile::encodeName(info.filePath()).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0600u) << info.fileName().toStdString();
    }
    index.discard();
    QFile target(folder.filePath(u"target"_s));
    ASSERT_TRUE(target.open(QIODevice::WriteOnly) && QFile::link(target.fileName(), index.path()));
    ASSERT_EQ(index.open().error(), Fault::damaged);
    index.discard();
    put(conversation(u"a"_s, {u"水"_s}));
    EXPECT_EQ(QFileInfo(target.fileName()).size(), 0) << "what the link named is not touched";
    ConversationSearchIndex nowhere(folder.filePath(u"missing/index.sqlite"_s));
    EXPECT_EQ(nowhere.open().error(), Fault::storage);
}

} // namespace lmp
