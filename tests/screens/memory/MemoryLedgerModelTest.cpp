#include "identity/MemoryTexts.h"

#include "MemoryLedgerFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;
using State = MemoryLedgerModel::State;
using Filter = MemoryLedgerModel::Filter;

class MemoryLedgerModelTest : public MemoryLedgerFixture {};

TEST_F(MemoryLedgerModelTest, LoadingEndsAsWhatTheServiceSaid) {
    struct Case {
        int status;
        QByteArray body;
        State state;
        QString error;
    };
    for (const auto &[status, body, state, error] :
         std::initializer_list<Case>{{200, bundle(), State::Loaded, {}},
                                     {200, R"({"items":[],"candidates":[],"chapters":[]})", State::Loaded, {}},
                                     {500, "{}", State::Failed, u"记忆读取失败"_s},
                                     {200, R"({"items":[{"id":"m1"}]})", State::Failed, u"记忆读取失败"_s},
                                     {200, "not json", State::Failed, u"记忆读取失败"_s}}) {
        SCOPED_TRACE(body.constData());
        restart();
        server.on(ledgerPath, StubServer::reply(status, body));
        ledger->open();
        EXPECT_EQ(ledger->state(), State::Loading);
        ASSERT_TRUE(eventually([&] { return ledger->state() != State::Loading; }));
        EXPECT_EQ(ledger->state(), state);
        EXPECT_EQ(ledger->errorText(), error);
    }
}

TEST_F(MemoryLedgerModelTest, AFailureLeavesWhatIsShown) {
    open();
    server.on(ledgerPath, StubServer::reply(500, "{}"));
    ledger->reload();
    EXPECT_TRUE(ledger->refreshing());
    ASSERT_TRUE(eventually([&] { return !ledger->refreshing(); }));
    EXPECT_EQ(shown().size(), 3);
    EXPECT_EQ(ledger->banner(), u"记忆读取失败"_s);
}

TEST_F(MemoryLedgerModelTest, OnlyTheNewestLoadCounts) {
    hold(ledgerPath);
    ledger->open();
    ASSERT_TRUE(eventually([&] { return held; }));
    const QPointer<QTcpSocket> first = held;
    server.on(ledgerPath, StubServer::reply(200, R"({"items":[],"candidates":[],"chapters":[]})"));
    ledger->reload();
    ASSERT_TRUE(eventually([&] { return isLoaded(); }));
    first->write(StubServer::message(200, bundle()));
    first->flush();
    // What is asked after it comes after it.
    EXPECT_TRUE(await(MemoryService(api).load()));
    settle();
    EXPECT_TRUE(shown().isEmpty());
    EXPECT_EQ(ledger->emptyTitle(), u"还没有记住关于你的事"_s);
}

TEST_F(MemoryLedgerModelTest, NobodySeesAnothersLedger) {
    // With the news of the sign-in, and without: what arrives late is looked at all the same.
    for (const bool told : {true, false}) {
        SCOPED_TRACE(told);
        user = u"u1"_s;
        restart();
        hold(ledgerPath);
        ledger->open();
        ASSERT_TRUE(eventually([&] { return held; }));
        user = u"u2"_s;
        if (told)
            ledger->recheckAccount();
        release(200, bundle());
        ASSERT_TRUE(eventually([&] { return ledger->state() == State::Failed; }));
        settle();
        EXPECT_EQ(ledger->errorText(), u"登录状态已改变，请重新打开记忆。"_s);
        EXPECT_TRUE(shown().isEmpty());
        server.on(ledgerPath, StubServer::reply(200, bundle()));
        open();
        EXPECT_EQ(shown().size(), 3);
    }
    // The same person by another sign-in is another owner.
    hold(ledgerPath);
    ledger->reload();
    ASSERT_TRUE(eventually([&] { return held; }));
    signIn += u'+';
    release(200, bundle());
    ASSERT_TRUE(eventually([&] { return ledger->state() == State::Failed; }));
    server.on(ledgerPath, StubServer::reply(200, bundle()));
    open();
    // What is being done to one is put away too, and what was typed.
    ledger->edit(u"m1"_s);
    ASSERT_TRUE(eventually([&] { return ledger->correction()->state() == MemoryCorrectionModel::State::Ready; }));
    ledger->correction()->setText(u"别人不该看到"_s);
    hold("/api/app/memory/freeze");
    ledger->setFrozen(u"m1"_s, true);
    ASSERT_TRUE(eventually([&] { return held; }));
    user = u"u3"_s;
    ledger->recheckAccount();
    release(200, "{}");
    settle();
    EXPECT_EQ(ledger->state(), State::Failed);
    EXPECT_TRUE(shown().isEmpty());
    EXPECT_TRUE(ledger->correction()->text().isEmpty());
    EXPECT_TRUE(inputs->keys().isEmpty());
}

TEST_F(MemoryLedgerModelTest, OneCharacterFindsWhateverItsCaseAndWidth) {
    open();
    struct Case {
        QString text;
        QStringList found;
    };
    for (const auto &[text, found] : std::initializer_list<Case>{{u"江"_s, {u"m1"_s}},
                                                                 {u"成都"_s, {u"m2"_s}},
                                                                 {u"喜欢 江边"_s, {u"m1"_s}},
                                                                 {u"喜欢 成都"_s, {}},
                                                                 {u"LIVES"_s, {u"m3"_s}},
                                                                 {u"ｈａｎｇ"_s, {u"m3"_s}},
                                                                 {u"  "_s, {u"m1"_s, u"m2"_s, u"m3"_s}},
                                                                 {u"聊天"_s, {u"m1"_s, u"m2"_s, u"m3"_s}}}) {
        ledger->find(text);
        EXPECT_EQ(shown(), found) << text.toStdString();
    }
    ledger->find(u"没有"_s);
    EXPECT_EQ(ledger->emptyTitle(), u"没有匹配的记忆"_s);
    ledger->showAll();
    EXPECT_EQ(shown().size(), 3);
    ledger->setFilter(Filter::Superseded);
    EXPECT_EQ(shown(), QStringList{u"m3"_s});
    ledger->setFilter(Filter::All);
    ledger->setTier(1);
    EXPECT_TRUE(shown().isEmpty()) << "none is a confirmed fact";
}

TEST_F(MemoryLedgerModelTest, ALongLedgerShowsABoundedWindow) {
    QByteArrayList items;
    for (int at = 0; at < 100; ++at)
        items << item("m" + QByteArray::number(at), at % 10 ? "江边" : "山上");
    server.on(ledgerPath,
              StubServer::reply(200, R"({"items":[)" + items.join(',') + R"(],"candidates":[],"chapters":[]})"));
    open();
    EXPECT_EQ(ledger->items()->count(), MemoryItemsModel::windowSize);
    EXPECT_EQ(ledger->items()->hidden(), 60);
    ledger->find(u"山"_s);
    EXPECT_EQ(shown().size(), 10);
    EXPECT_EQ(ledger->items()->hidden(), 0);
    ledger->find({});
    ledger->items()->showMore();
    EXPECT_EQ(ledger->items()->hidden(), 20);
}

TEST_F(MemoryLedgerModelTest, ACandidateIsTakenOnceOrStays) {
    open();
    hold(confirmPath);
    ledger->confirm(u"c1"_s);
    ledger->confirm(u"c1"_s);
    ledger->dismiss(u"c1"_s);
    release(200, R"({"item":)" + item("m9", "养猫", R"(,"supersedes":"m1")") + R"(,"supersededContent":"养狗"})");
    ASSERT_TRUE(eventually([&] { return !ledger->banner().isEmpty(); }));
    EXPECT_EQ(requests(confirmPath), 1);
    EXPECT_EQ(ledger->banner(), u"已收下，并取代了更早的「养狗…」；旧条仍可在「已取代」中查看。"_s);
    EXPECT_EQ(shown().first(), u"m9"_s);
    EXPECT_TRUE(role(u"m1"_s, MemoryItemsModel::SupersededRole).toBool());
    EXPECT_EQ(ledger->waiting(), 1);
    server.on(confirmPath, StubServer::reply(409, "{}"));
    ledger->closeBanner();
    ledger->confirm(u"c2"_s);
    ASSERT_TRUE(eventually([&] { return !ledger->banner().isEmpty(); }));
    EXPECT_EQ(ledger->banner(), u"没记下来，稍后再试——这条仍在「等你确认」里。"_s);
    EXPECT_TRUE(ledger->bannerFailed());
    EXPECT_EQ(ledger->waiting(), 1);
    server.on("/api/app/memory/candidate/dismiss", StubServer::reply(200, "{}"));
    ledger->dismiss(u"c2"_s);
    ASSERT_TRUE(eventually([&] { return ledger->waiting() == 0; }));
}

TEST_F(MemoryLedgerModelTest, WithoutAnAnswerTheLedgerTellsWhatWasDone) {
    // Each deed lands and its answer is lost; what is shown afterwards is what there is.
    const QByteArray after = R"({"items":[)" + item("m1", "喜欢江边") + R"(],"candidates":[],"chapters":[]})";
    for (const auto &[name, path, deed, undo] :
         std::initializer_list<std::tuple<const char *, const char *, std::function<void()>, bool>>{
             {"confirm", confirmPath, [this] { ledger->confirm(u"c1"_s); }, false},
             {"dismiss", "/api/app/memory/candidate/dismiss", [this] { ledger->dismiss(u"c1"_s); }, false},
             {"forget", "/api/app/memory/forget", [this] { ledger->forget(u"m2"_s); }, true},
             {"chapter", "/api/app/chapter/resolve", [this] { ledger->resolveChapter(u"h1"_s, false); }, false}}) {
        for (const auto &[status, body] :
             std::initializer_list<std::pair<int, QByteArray>>{{500, "{}"}, {404, "{}"}, {200, "not json"}, {0, {}}}) {
            SCOPED_TRACE(name);
            SCOPED_TRACE(status);
            if (undo && status == 200)
                continue; // an answer without the memory is one
            server.on(ledgerPath, StubServer::reply(200, bundle()));
            restart();
            open();
            server.on(ledgerPath, StubServer::reply(200, after));
            server.on(
                path,
                status ? StubServer::reply(status, body) : [](const auto &, QTcpSocket &socket) { socket.abort(); });
            deed();
            ASSERT_TRUE(eventually([&] { return !ledger->banner().isEmpty(); }));
            EXPECT_EQ(ledger->banner(), MemoryTexts::outcomeUnknown());
            ASSERT_TRUE(eventually([&] { return !ledger->refreshing(); }));
            EXPECT_EQ(shown(), QStringList{u"m1"_s});
            EXPECT_EQ(ledger->waiting(), 0);
            EXPECT_EQ(!ledger->undoText().isEmpty(), undo) << "what is gone can be taken back";
        }
    }
}

TEST_F(MemoryLedgerModelTest, ForgettingCanBeTakenBack) {
    open();
    server.on("/api/app/memory/forget",
              StubServer::reply(200, R"({"item":)" + item("m2", "住在成都", R"(,"later":7)") + "}"));
    ledger->forget(u"m2"_s);
    const auto canUndo = [this] {
        return ledger->undoText().contains(MemoryTexts::forgetNote());
    };
    ASSERT_TRUE(eventually(canUndo));
    EXPECT_EQ(shown(), (QStringList{u"m1"_s, u"m3"_s}));
    // Whatever else happens and is said, it stays: a reading that fails, another deed, a banner that is closed.
    server.on(ledgerPath, StubServer::reply(500, "{}"));
    ledger->open();
    ASSERT_TRUE(eventually([&] { return ledger->bannerFailed(); }));
    server.on("/api/app/memory/freeze", StubServer::reply(403, "{}"));
    ledger->setFrozen(u"m1"_s, true);
    ASSERT_TRUE(eventually([&] { return ledger->banner().startsWith(u"没能冻结"_s); }));
    ledger->closeBanner();
    EXPECT_TRUE(canUndo());
    server.on("/api/app/memory/restore", StubServer::reply(403, "{}"));
    ledger->undoForget();
    ASSERT_TRUE(eventually([&] { return ledger->bannerFailed(); }));
    EXPECT_TRUE(canUndo()) << "it can be tried again";
    server.on("/api/app/memory/restore", StubServer::reply(200, "{}"));
    ledger->undoForget();
    ASSERT_TRUE(eventually([&] { return !canUndo(); }));
    EXPECT_EQ(shown(), (QStringList{u"m1"_s, u"m2"_s, u"m3"_s}));
    EXPECT_TRUE(server.requests.back().body.contains(R"("later":7)"));
    // Where the service gives nothing back, what was shown is what is taken back.
    server.on("/api/app/memory/forget", StubServer::reply(200, "{}"));
    ledger->forget(u"m1"_s);
    ASSERT_TRUE(eventually(canUndo));
    ledger->undoForget();
    ASSERT_TRUE(eventually([&] { return !canUndo(); }));
    EXPECT_EQ(shown().first(), u"m1"_s);
    ledger->forget(u"m1"_s);
    ASSERT_TRUE(eventually(canUndo));
    ledger->closeUndo();
    EXPECT_FALSE(canUndo());
}

TEST_F(MemoryLedgerModelTest, FreezingAndChapters) {
    open();
    server.on("/api/app/memory/freeze", StubServer::reply(200, "{}"));
    ledger->setFrozen(u"m1"_s, true);
    EXPECT_TRUE(role(u"m1"_s, MemoryItemsModel::BusyRole).toBool());
    ASSERT_TRUE(eventually([&] { return role(u"m1"_s, MemoryItemsModel::FrozenRole).toBool(); }));
    EXPECT_FALSE(role(u"m1"_s, MemoryItemsModel::BusyRole).toBool());
    server.on("/api/app/chapter/resolve", StubServer::reply(500, "{}"));
    ledger->resolveChapter(u"h1"_s, true);
    ASSERT_TRUE(eventually([&] { return ledger->bannerFailed(); }));
    EXPECT_EQ(ledger->pendingChapters(), 1);
    server.on("/api/app/chapter/resolve", StubServer::reply(200, "{}"));
    ledger->resolveChapter(u"h1"_s, true);
    ASSERT_TRUE(eventually([&] { return ledger->pendingChapters() == 0; }));
    EXPECT_EQ(ledger->chapters()->rowCount(), 1);
}

} // namespace lmp
