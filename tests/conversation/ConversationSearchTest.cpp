#include "conversation/ConversationSearch.h"

#include "ChatFixture.h"

#include <sqlite3.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class ConversationSearchTest : public ChatFixture {
protected:
    ConversationSearchTest() {
        list({"a", "b"});
        has("a", {"我喜欢龙井", "好茶"});
        has("b", {"明天开会"});
        search.follow(&session);
    }

    static QByteArray saying(const QByteArray &id, const QByteArrayList &texts) {
        QByteArrayList messages;
        for (const QByteArray &text : texts)
            messages << R"({"id":")" + id + QByteArray::number(messages.size()) + R"(","role":"user","text":")" + text +
                            "\"}";
        return R"({"conversation":{"id":")" + id + R"(","title":"t","revision":1,"messages":[)" + messages.join(',') +
               "]}}";
    }
    void list(const QByteArrayList &ids) {
        QByteArrayList rows;
        for (const QByteArray &id : ids)
            rows << R"({"id":")" + id + R"(","title":"t"})";
        server.on("/api/app/conversations", StubServer::reply(200, R"({"conversations":[)" + rows.join(',') + "]}"));
    }
    void has(const QByteArray &id, const QByteArrayList &texts) {
        server.on("/api/app/conversation?id=" + id, StubServer::reply(200, saying(id, texts)));
    }
    QStringList found(const QString &typed) {
        const auto page = await(search.find(typed));
        if (!page)
            return {page.error()};
        QStringList ids;
        for (const auto &hit : page->hits)
            ids << hit.messageId;
        return ids;
    }
    int loads(const QByteArray &id) const {
        return int(std::ranges::count(server.requests, "/api/app/conversation?id=" + id, &StubServer::Request::path));
    }
    /// Whether `text` is anywhere in the files of the index, as it is written.
    bool leavesTraces(const QByteArray &text) const {
        const auto all = QDir(folder.filePath(u"ConversationSearch"_s)).entryInfoList(QDir::Files | QDir::Hidden);
        return std::ranges::any_of(all, [&](const QFileInfo &info) {
            QFile file(info.filePath());
            return file.open(QIODevice::ReadOnly) && file.readAll().contains(text);
        });
    }
    /// Another process, in the middle of writing the index.
    void holdBusy() {
        const QString path = folder.filePath(u"ConversationSearch/"_s + files().value(0));
        ASSERT_EQ(sqlite3_open(QFile::encodeName(path).constData(), &other), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
    }
    void letGo() {
        sqlite3_close(other);
        other = nullptr;
    }
    QStringList files() const {
        return QDir(folder.filePath(u"ConversationSearch"_s)).entryList({u"*.sqlite"_s}, QDir::Files);
    }
    void damage() {
        for (const QString &name : files()) {
            QFile file(folder.filePath(u"ConversationSearch/"_s + name));
            ASSERT_TRUE(file.open(QIODevice::ReadWrite));
            file.write(QByteArray(file.size(), 'x'));
        }
    }

    std::unique_ptr<ConversationSearch> make() {
        return std::make_unique<ConversationSearch>(ConversationService(api), drafts, account,
                                                    ApplicationSupport::at(folder.path()), u"here"_s, clock);
    }

    sqlite3 *other = nullptr;
    std::unique_ptr<ConversationSearch> searching = make();
    ConversationSearch &search = *searching;
};

TEST_F(ConversationSearchTest, FetchesWhatIsMissingAndSaysHowFarItIs) {
    EXPECT_EQ(found(u"茶"_s), QStringList());
    EXPECT_FALSE(search.coverage().complete());
    EXPECT_FALSE(search.coverage().text().isEmpty());
    search.refresh();
    ASSERT_TRUE(eventually([&] { return clock.sleepers() == 1; }));
    EXPECT_EQ(loads("a") + loads("b"), 0) << "one after another, with pauses";
    EXPECT_EQ(search.coverage().text(), u"已收录 0 / 2 段对话，其余正在后台收录。"_s);
    const QObject holder;
    search.holdBack(&holder, true);
    clock.advance(1s);
    ASSERT_TRUE(eventually([&] { return clock.sleepers() == 1; }));
    EXPECT_EQ(loads("a"), 0) << "a reply is on its way";
    search.holdBack(&holder, false);
    clock.advance(1s);
    ASSERT_TRUE(eventually([&] { return search.coverage().indexed == 1; }));
    EXPECT_EQ(found(u"茶"_s), QStringList{u"a1"_s});
    ASSERT_TRUE(eventually([&] { return clock.sleepers() == 1; }));
    clock.advance(1s);
    ASSERT_TRUE(eventually([&] { return !search.coverage().working; }));
    EXPECT_TRUE(search.coverage().complete());
    EXPECT_EQ(search.coverage().text(), QString());
    await(search.catchUp());
    EXPECT_EQ(loads("a") + loads("b"), 2) << "nothing is fetched twice";
}

TEST_F(ConversationSearchTest, FailuresAreSaid) {
    server.on("/api/app/conversation?id=a", StubServer::reply(500, "{}"));
    server.on("/api/app/conversation?id=b", StubServer::reply(404, "{}"));
    await(search.catchUp());
    EXPECT_EQ(search.coverage().indexed, 1) << "what is gone is not missing";
    has("a", {"茶"});
    await(search.catchUp());
    EXPECT_TRUE(search.coverage().complete());
    server.on("/api/app/conversations", StubServer::reply(500, "{}"));
    await(search.catchUp());
    EXPECT_FALSE(search.coverage().trouble.isEmpty());
    EXPECT_EQ(found(u"茶"_s), QStringList{u"a0"_s});
}

TEST_F(ConversationSearchTest, WhatIsOpenedSavedOrKeptHereIsFound) {
    ASSERT_TRUE(await(session.load(u"a"_s)));
    ASSERT_TRUE(eventually([&] { return found(u"茶"_s).size() == 1; }));
    server.on("/api/app/conversation/sync", StubServer::reply(503, "{}"));
    session.begin();
    session.edit([](ConversationDTO &conversation) {
        ConvMessageDTO message;
        message.id = u"n0"_s;
        message.text = u"只在本机的诗"_s;
        conversation.messages.push_back(message);
    });
    session.save();
    ASSERT_TRUE(eventually([&] { return found(u"诗"_s).size() == 1; }));
    await(search.catchUp());
    EXPECT_EQ(found(u"诗"_s), QStringList{u"n0"_s}) << "the service does not know it, this machine does";
    EXPECT_EQ(search.coverage().total, 3);
    list({"b"});
    await(search.catchUp());
    EXPECT_EQ(found(u"茶"_s), QStringList()) << "deleted elsewhere";
}

TEST_F(ConversationSearchTest, IncognitoNeverReachesIt) {
    server.on("/api/relay/chat/stream", StubServer::events(frames({R"({"delta":"悄悄"})"})));
    session.begin({}, true);
    const QString id = session.conversation()->id;
    turn(u"悄悄话"_s);
    session.begin();
    await(search.catchUp());
    EXPECT_EQ(found(u"悄"_s), QStringList());
    EXPECT_TRUE(leavesTraces("龙井"));
    EXPECT_FALSE(leavesTraces("悄悄"));
    // One that is in the index already and turns out to be incognito goes, and does not come back.
    ASSERT_EQ(found(u"茶"_s).size(), 1);
    search.forget(u"a"_s);
    EXPECT_EQ(found(u"茶"_s), QStringList());
    ASSERT_TRUE(await(session.load(u"a"_s)));
    await(search.catchUp());
    EXPECT_EQ(found(u"茶"_s), QStringList());
    EXPECT_TRUE(search.coverage().complete());
}

TEST_F(ConversationSearchTest, AnIncognitoChatLeavesABusyIndexAlone) {
    await(search.catchUp());
    ASSERT_EQ(found(u"茶"_s).size(), 1);
    holdBusy();
    server.on("/api/relay/chat/stream", StubServer::events(frames({R"({"delta":"好"})"})));
    session.begin({}, true);
    turn(u"悄悄话"_s);
    turn(u"再悄悄说"_s);
    EXPECT_EQ(found(u"茶"_s).size(), 1);
    EXPECT_TRUE(search.coverage().complete());
    letGo();
    EXPECT_EQ(loads("a"), 1);
}

TEST_F(ConversationSearchTest, WhatMustGoGoesWithAllWhenTheFileIsBusy) {
    await(search.catchUp());
    ASSERT_EQ(found(u"茶"_s).size(), 1);
    holdBusy();
    search.forget(u"a"_s);
    EXPECT_EQ(found(u"茶"_s), QStringList());
    EXPECT_FALSE(search.coverage().complete()) << "nobody claims that everything was looked through";
    letGo();
    ASSERT_TRUE(eventually([&] {
        clock.advance(1s);
        return search.coverage().complete() && !search.coverage().working;
    }));
    EXPECT_EQ(found(u"开会"_s).size(), 1);
    EXPECT_EQ(found(u"茶"_s), QStringList());
    EXPECT_FALSE(leavesTraces("龙井"));
}

TEST_F(ConversationSearchTest, LooksOnUntilThePageIsFullOrNobodyAsks) {
    has("b", {"一二三四"});
    list({"a", "b"});
    QByteArrayList near;
    for (int i = 0; i <= ConversationSearchIndex::looks; ++i)
        near << "一二三 二三四";
    has("a", near);
    await(search.catchUp());
    EXPECT_EQ(found(u"一二三四"_s), QStringList{u"b0"_s});
    std::stop_source stop;
    stop.request_stop();
    const auto page = await(search.find(u"一二三四"_s, {}, 50, stop.get_token()));
    EXPECT_TRUE(page && page->hits.isEmpty() && page->more);
}

TEST_F(ConversationSearchTest, NobodyFindsWhatIsAnothers) {
    await(search.catchUp());
    ASSERT_EQ(found(u"茶"_s).size(), 1);
    // Asked by the one, answered when the other is there.
    auto late = search.find(u"茶"_s);
    user = u"u2"_s;
    signIn = u"s2"_s;
    const auto page = await(std::move(late));
    EXPECT_TRUE(page && page->hits.isEmpty());
    EXPECT_EQ(found(u"茶"_s), QStringList());
    EXPECT_EQ(files().size(), 2) << "a file for each";
    // Fetched for the one, arriving for the other.
    QPointer<QTcpSocket> held;
    server.on("/api/app/conversation?id=a", [&](const auto &, QTcpSocket &socket) { held = &socket; });
    auto fetching = search.catchUp();
    ASSERT_TRUE(eventually([&] { return held; }));
    user = u"u3"_s;
    search.recheckAccount();
    held->write(StubServer::message(200, saying("a", {"茶"})));
    await(std::move(fetching));
    EXPECT_EQ(found(u"茶"_s), QStringList());
    EXPECT_FALSE(search.coverage().known);
    user.reset();
    EXPECT_EQ(found(u"茶"_s), QStringList{u"登录后才能查找对话。"_s});
    user = u"u1"_s;
    EXPECT_EQ(found(u"茶"_s), QStringList{u"a1"_s}) << "and the first has theirs again";
}

TEST_F(ConversationSearchTest, ADamagedIndexIsFilledAgain) {
    await(search.catchUp());
    searching.reset();
    damage();
    searching = make();
    const auto page = await(searching->find(u"茶"_s));
    ASSERT_TRUE(page) << page.error().toStdString();
    EXPECT_TRUE(page->hits.isEmpty());
    EXPECT_FALSE(searching->coverage().complete()) << "and nobody claims that this is all";
    ASSERT_TRUE(eventually([&] {
        clock.advance(1s);
        return searching->coverage().complete() && !searching->coverage().working;
    }));
    EXPECT_EQ(await(searching->find(u"茶"_s))->hits.size(), 1);
}

} // namespace lmp
