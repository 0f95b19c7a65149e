#include "conversation/ConversationTexts.h"

#include "ChatFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;
using State = ConversationDeliveryState;
using Where = ConversationSession::Saved::Where;

class ConversationSessionTest : public ChatFixture {
protected:
    static constexpr const char *sync = "/api/app/conversation/sync";

    void say(const QString &id, const QString &text = u"x"_s, std::optional<State> state = State::submitted) {
        session.edit([&](ConversationDTO &conversation) {
            ConvMessageDTO message;
            message.id = id;
            message.text = text;
            message.deliveryState = state;
            conversation.messages.push_back(message);
        });
    }
    ConversationSession::Saved save() {
        const auto before = saves.size();
        session.save();
        EXPECT_TRUE(eventually([&] { return saves.size() > before; }));
        return saves.back();
    }
    std::vector<ConversationDTO> synced() const {
        std::vector<ConversationDTO> found;
        for (const QByteArray &body : bodies("/app/conversation/sync"))
            found.push_back(Json::decode<ConversationService::SyncBody>(body)->conversation);
        return found;
    }
    void serve(int revision, const QByteArray &messages) {
        server.on("/api/app/conversation?id=c", StubServer::reply(200, conversation("c", revision, messages)));
    }
    std::optional<ConversationDraftCache::Entry> draft(const QString &id) {
        return drafts.read(u"u1"_s, id).value_or(std::nullopt);
    }
    void keepDraft(std::optional<qint64> revision, const QStringList &messages) {
        ConversationDTO snapshot;
        snapshot.id = u"c"_s;
        snapshot.revision = revision;
        for (const QString &id : messages) {
            ConvMessageDTO message;
            message.id = id;
            message.text = u"x"_s;
            message.deliveryState = State::pending;
            snapshot.messages.push_back(message);
        }
        const auto before = draft(u"c"_s);
        const auto known = before ? std::optional(before->writeId) : std::nullopt;
        ASSERT_TRUE(drafts.save(u"u1"_s, snapshot, known, clock.now()));
    }
    static QByteArray stored(const char *id, const char *state = "submitted") {
        return QByteArray(R"({"id":")") + id + R"(","role":"user","text":"x","deliveryState":")" + state + "\"}";
    }
};

TEST_F(ConversationSessionTest, WhatBecomesOfASave) {
    struct Case {
        int status;
        QByteArray body;
        Where where;
        bool conflict;
        std::optional<QString> text;
    };
    const auto line = u"尚未同步，草稿已保存在本机，连接恢复后可重试。"_s;
    for (const Case &c : std::initializer_list<Case>{
             {200, R"({"ok":true,"revision":7})", Where::Service, false, {}},
             {200, R"({"ok":true})", Where::Service, false, {}},
             {200, R"({"ok":false})", Where::Local, false, line},
             {200, "<html>", Where::Local, false, line},
             {500, "{}", Where::Local, false, line},
             {401, "{}", Where::Local, false, line},
             {409, "{}", Where::Local, true, ConversationTexts::conflict()},
         }) {
        SCOPED_TRACE((QByteArray::number(c.status) + c.body).constData());
        server.on(sync, StubServer::reply(c.status, c.body));
        session.begin();
        say(u"1"_s);
        const auto saved = save();
        EXPECT_EQ(saved.where, c.where);
        EXPECT_EQ(saved.conflict, c.conflict);
        EXPECT_EQ(session.conflicted(), c.conflict);
        EXPECT_EQ(saved.text, c.text);
        EXPECT_EQ(session.unsaved(), c.where != Where::Service);
        const auto kept = draft(session.conversation()->id);
        EXPECT_EQ(kept.has_value(), c.where == Where::Local);
        if (kept)
            EXPECT_EQ(kept->snapshot, *session.conversation());
        if (c.body.contains("7"))
            EXPECT_EQ(session.conversation()->revision, 7);
    }
}

TEST_F(ConversationSessionTest, AConflictStopsSavingAndLosesNothing) {
    server.on(sync, StubServer::reply(409, "{}"));
    session.begin();
    say(u"1"_s);
    save();
    server.on(sync, StubServer::reply(200, R"({"ok":true,"revision":9})"));
    say(u"2"_s);
    EXPECT_TRUE(save().conflict);
    EXPECT_EQ(synced().size(), 1u);
    EXPECT_EQ(draft(session.conversation()->id)->snapshot.messages.size(), 2);
}

TEST_F(ConversationSessionTest, ALaterSaveRemovesTheDraft) {
    server.on(sync, StubServer::reply(503, "{}"));
    session.begin();
    say(u"1"_s);
    save();
    ASSERT_EQ(draftFiles().size(), 1);
    server.on(sync, StubServer::reply(200, R"({"ok":true,"revision":1})"));
    EXPECT_EQ(save().where, Where::Service);
    EXPECT_TRUE(eventually([&] { return draftFiles().isEmpty(); }));
}

TEST_F(ConversationSessionTest, SavesFollowEachOtherWithTheNewRevision) {
    int revision = 0;
    server.on(sync, [&](const auto &, QTcpSocket &socket) {
        socket.write(StubServer::message(200, R"({"ok":true,"revision":)" + QByteArray::number(++revision) + "}"));
    });
    session.begin();
    say(u"1"_s);
    session.save();
    say(u"2"_s);
    session.save();
    say(u"3"_s);
    session.save();
    ASSERT_TRUE(eventually([&] { return !saves.empty(); }));
    settle();
    ASSERT_EQ(synced().size(), 2u) << "what was asked for meanwhile is one save more";
    EXPECT_FALSE(synced()[0].revision);
    EXPECT_EQ(synced()[1].revision, 1);
    EXPECT_EQ(synced()[1].messages.size(), 3);
    EXPECT_EQ(saves.size(), 1u);
    EXPECT_FALSE(session.unsaved());
}

TEST_F(ConversationSessionTest, WhatIsTypedDuringASaveStaysKept) {
    QPointer<QTcpSocket> held;
    server.on(sync, [&](const auto &, QTcpSocket &socket) { held = &socket; });
    session.begin();
    say(u"1"_s);
    session.save();
    ASSERT_TRUE(eventually([&] { return held; }));
    say(u"2"_s);
    session.keep();
    held->write(StubServer::message(200, R"({"ok":true,"revision":5})"));
    ASSERT_TRUE(eventually([&] { return !saves.empty(); }));
    const QString id = session.conversation()->id;
    ASSERT_TRUE(eventually([&] { return draft(id) && draft(id)->snapshot.revision == 5; }));
    EXPECT_EQ(draft(id)->snapshot.messages.size(), 2);
}

TEST_F(ConversationSessionTest, IncognitoIsKeptNowhere) {
    server.on("/api/relay/chat/stream", StubServer::events(frames({R"({"delta":"a"})"})));
    session.begin({}, true);
    turn(u"悄悄"_s);
    EXPECT_EQ(saves.back().where, Where::Nowhere);
    session.close();
    settle();
    EXPECT_TRUE(synced().empty());
    EXPECT_TRUE(draftFiles().isEmpty());
}

TEST_F(ConversationSessionTest, AnotherAccountNeverSavesIt) {
    session.begin();
    say(u"1"_s);
    const QString id = session.conversation()->id;
    user = u"u2"_s;
    EXPECT_EQ(save().where, Where::Local);
    EXPECT_TRUE(synced().empty());
    EXPECT_TRUE(draft(id)) << "it stays with the account it belongs to";
}

TEST_F(ConversationSessionTest, NoPromiseThatIsNotKept) {
    server.on(sync, StubServer::reply(500, "{}"));
    QFile inTheWay(folder.filePath(u"ConversationDrafts"_s));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    session.begin();
    say(u"1"_s);
    EXPECT_EQ(save().where, Where::Lost);
    EXPECT_EQ(saves.back().text, ConversationTexts::notKept());
    user.reset();
    inTheWay.remove();
    session.begin();
    say(u"1"_s);
    EXPECT_EQ(save().where, Where::Lost) << "nobody to keep it for";
}

TEST_F(ConversationSessionTest, WhatIsUnsavedIsKeptBeforeAnEnd) {
    EXPECT_TRUE(await(session.preserve())) << "nothing is open";
    session.begin({}, true);
    say(u"1"_s);
    EXPECT_TRUE(await(session.preserve()));
    EXPECT_TRUE(draftFiles().isEmpty()) << "incognito";
    session.begin();
    EXPECT_TRUE(await(session.preserve()));
    EXPECT_TRUE(draftFiles().isEmpty()) << "nothing was said";
    say(u"1"_s);
    session.keep();
    say(u"2"_s);
    EXPECT_TRUE(await(session.preserve()));
    const QString id = session.conversation()->id;
    ASSERT_TRUE(draft(id));
    EXPECT_EQ(draft(id)->snapshot.messages.size(), 2);
    QDir(folder.filePath(u"ConversationDrafts"_s)).removeRecursively();
    QFile inTheWay(folder.filePath(u"ConversationDrafts"_s));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_FALSE(await(session.preserve()));
}

TEST_F(ConversationSessionTest, LoadingRecoversWhatWasPending) {
    serve(3, stored("1") + "," + stored("2", "pending"));
    ASSERT_TRUE(await(session.load(u"c"_s)));
    EXPECT_EQ(message(0).deliveryState, State::submitted);
    EXPECT_EQ(message(1).deliveryState, State::unknown);
    EXPECT_TRUE(session.unsaved());
    EXPECT_TRUE(session.known());
    serve(3, stored("1"));
    ASSERT_TRUE(await(session.load(u"c"_s, ConversationSession::Copy::Service)));
    EXPECT_FALSE(session.unsaved());
}

TEST_F(ConversationSessionTest, IdsAsTheyStand) {
    EXPECT_EQ(await(session.load(u"a b"_s)).error().reason, u"地址不合法"_s);
    server.on("/api/app/conversation?id=", StubServer::reply(200, conversation("c", 1, "")));
    for (const auto &[id, path] : std::initializer_list<std::pair<QString, QByteArray>>{
             {u"%26"_s, "%26"}, {u"c#x"_s, "c"}, {u"c&id=d"_s, "c&id=d"}, {u""_s, ""}}) {
        const auto loaded = await(session.load(id));
        ASSERT_FALSE(loaded) << id.toStdString();
        EXPECT_EQ(loaded.error().reason, ConversationTexts::anotherConversation());
        EXPECT_EQ(server.requests.back().path, "/api/app/conversation?id=" + path);
        EXPECT_FALSE(session.isActive());
    }
    EXPECT_TRUE(await(session.load(u"c"_s)));
}

TEST_F(ConversationSessionTest, WhatThisMachineKeptIsOpenedAgain) {
    struct Case {
        const char *name;
        std::optional<qint64> draftRevision;
        QStringList draftMessages;
        int revision; ///< 0: the service has none
        QByteArray messages;
        qsizetype opened;
        bool unsaved, conflict, fileStays;
    };
    for (const Case &c : std::initializer_list<Case>{
             {"the service stood still", 3, {u"1"_s, u"2"_s}, 3, stored("1"), 2, true, false, true},
             {"only the answer was lost",
              3,
              {u"1"_s, u"2"_s},
              4,
              stored("1") + "," + stored("2"),
              2,
              false,
              false,
              false},
             {"both went on", 3, {u"1"_s, u"2"_s}, 4, stored("1") + "," + stored("9"), 2, true, true, true},
             {"the service never had it", {}, {u"1"_s}, 0, {}, 1, true, false, true},
         }) {
        SCOPED_TRACE(c.name);
        // A load waits for what the conversation before it still had to write.
        await(session.load(u"nobody"_s));
        keepDraft(c.draftRevision, c.draftMessages);
        if (c.revision)
            serve(c.revision, c.messages);
        else
            server.on("/api/app/conversation?id=c", StubServer::reply(404, "{}"));
        ASSERT_TRUE(await(session.load(u"c"_s)));
        EXPECT_EQ(session.conversation()->messages.size(), c.opened);
        EXPECT_EQ(message(0).deliveryState, c.unsaved ? State::unknown : State::submitted);
        EXPECT_EQ(session.unsaved(), c.unsaved);
        EXPECT_EQ(session.conflicted(), c.conflict);
        EXPECT_TRUE(eventually([&] { return draft(u"c"_s).has_value() == c.fileStays; }));
    }
}

TEST_F(ConversationSessionTest, AnotherWindowsDraftIsNeverOverwritten) {
    server.on(sync, StubServer::reply(503, "{}"));
    session.begin();
    say(u"1"_s);
    ASSERT_EQ(save().where, Where::Local);
    const QString id = session.conversation()->id;
    auto theirs = draft(id)->snapshot;
    theirs.title = u"那边"_s;
    ASSERT_TRUE(drafts.save(user, theirs, draft(id)->writeId, clock.now()));
    say(u"2"_s);
    const auto refused = save();
    EXPECT_EQ(refused.where, Where::Lost);
    EXPECT_EQ(refused.text, ConversationTexts::draftChangedElsewhere());
    EXPECT_TRUE(session.draftChangedElsewhere());
    EXPECT_FALSE(await(session.preserve())) << "it would be lost, and is not said to be kept";

    // As a conversation of its own it is in nobody's way.
    session.saveAsNew();
    EXPECT_TRUE(await(session.preserve()));
    EXPECT_NE(session.conversation()->id, id);
    EXPECT_EQ(draft(session.conversation()->id)->snapshot.messages.size(), 2);
    EXPECT_EQ(draft(id)->snapshot.title, u"那边"_s);
    EXPECT_EQ(draftFiles().size(), 2);
}

TEST_F(ConversationSessionTest, SavedAsNewItIsOutOfAConflict) {
    server.on(sync, StubServer::reply(409, "{}"));
    session.begin();
    say(u"1"_s);
    ASSERT_TRUE(save().conflict);
    const QString id = session.conversation()->id;
    server.on(sync, StubServer::reply(200, R"({"ok":true,"revision":1})"));
    session.saveAsNew();
    EXPECT_FALSE(session.conflicted());
    ASSERT_TRUE(eventually([&] { return saves.size() > 1; }));
    EXPECT_EQ(saves.back().where, Where::Service);
    EXPECT_EQ(synced().back().revision, std::nullopt);
    EXPECT_EQ(synced().back().messages.size(), 1);
    EXPECT_TRUE(eventually([&] { return draftFiles().isEmpty(); })) << "the draft of before goes with it";
}

TEST_F(ConversationSessionTest, TheServicesCopyAtThePersonsWord) {
    keepDraft(3, {u"1"_s, u"2"_s});
    serve(4, stored("9"));
    ASSERT_TRUE(await(session.load(u"c"_s)));
    ASSERT_TRUE(await(session.preserve()));
    // Another window goes on with it.
    keepDraft(3, {u"1"_s, u"2"_s, u"3"_s});
    ASSERT_TRUE(await(session.load(u"c"_s, ConversationSession::Copy::Service)));
    EXPECT_EQ(session.conversation()->messages.size(), 3) << "nobody has given up what was not in sight";
    EXPECT_TRUE(session.conflicted());
    ASSERT_TRUE(await(session.preserve()));
    ASSERT_TRUE(await(session.load(u"c"_s, ConversationSession::Copy::Service)));
    EXPECT_EQ(message(0).id, u"9"_s);
    EXPECT_FALSE(session.conflicted());
    EXPECT_TRUE(eventually([&] { return !draft(u"c"_s); })) << "or it would come back at the next opening";

    // What is open and kept nowhere yet is given up just the same.
    say(u"3"_s);
    serve(5, stored("9"));
    ASSERT_TRUE(await(session.load(u"c"_s, ConversationSession::Copy::Service)));
    EXPECT_EQ(session.conversation()->messages.size(), 1);
    ASSERT_TRUE(await(session.load(u"c"_s)));
    EXPECT_EQ(session.conversation()->messages.size(), 1);
    EXPECT_FALSE(session.unsaved());
}

TEST_F(ConversationSessionTest, ALateLoadIsDropped) {
    QPointer<QTcpSocket> held;
    server.on("/api/app/conversation?id=c", [&](const auto &, QTcpSocket &socket) { held = &socket; });
    auto late = session.load(u"c"_s);
    ASSERT_TRUE(eventually([&] { return held; }));
    session.begin();
    const auto open = *session.conversation();
    held->write(StubServer::message(200, conversation("c", 1, "")));
    EXPECT_FALSE(await(std::move(late)));
    EXPECT_EQ(*session.conversation(), open);

    held = nullptr;
    auto closed = session.load(u"c"_s);
    ASSERT_TRUE(eventually([&] { return held; }));
    session.close();
    held->write(StubServer::message(200, conversation("c", 1, "")));
    EXPECT_FALSE(await(std::move(closed)));
    EXPECT_FALSE(session.isActive());
}

TEST_F(ConversationSessionTest, TheUnsavedIsKeptWhenItIsClosed) {
    session.begin();
    say(u"1"_s, u"没说完"_s, State::pending);
    const QString id = session.conversation()->id;
    session.begin();
    ASSERT_TRUE(eventually([&] { return draft(id).has_value(); }));
    EXPECT_EQ(draft(id)->snapshot.messages[0].text, u"没说完"_s);
    session.close();
    EXPECT_EQ(draftFiles().size(), 1) << "a conversation in which nothing was said is not kept";
}

} // namespace lmp
