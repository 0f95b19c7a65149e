#include "identity/MemoryService.h"
#include "identity/MemoryImport.h"
#include "identity/MemoryTexts.h"

#include "support/Await.h"
#include "support/StubServer.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

class MemoryServiceTest : public ::testing::Test {
protected:
    MemoryService service() {
        return MemoryService(APIClient(server.url(u"/api"_s), [] { return u"t"_s; }));
    }

    StubServer server;
};

TEST_F(MemoryServiceTest, ACorrectionIsSentOnceAndSaysWhatIsKnown) {
    using Outcome = MemoryCorrectionOutcome;
    struct Case {
        int status;
        QByteArray body;
        Outcome outcome;
    };
    for (const auto &[status, body, outcome] :
         std::initializer_list<Case>{{200, R"({"previous":"旧","revision":"r2"})", {Outcome::done{u"旧"_s, u"r2"_s}}},
                                     {409, R"({"reason":"x"})", {Outcome::conflict{}}},
                                     {500, "{}", {Outcome::unknown{}}},
                                     {401, "{}", {Outcome::unknown{}}},
                                     {200, R"({"previous":"旧"})", {Outcome::unknown{}}},
                                     {200, "not json", {Outcome::unknown{}}}}) {
        server.requests.clear();
        server.on("/api/app/memory/correct", StubServer::reply(status, body));
        EXPECT_EQ(await(service().correct(u"m1"_s, u"新"_s, u"r1"_s)), outcome) << status << body.constData();
        ASSERT_EQ(server.requests.size(), 1);
        EXPECT_EQ(Json::decode<MemoryService::CorrectBody>(server.requests[0].body)->expectedRevision, u"r1"_s);
    }
}

TEST_F(MemoryServiceTest, ARevertSaysWhatIsKnown) {
    using Outcome = MemoryRevertOutcome;
    struct Case {
        int status;
        QByteArray body;
        Outcome outcome;
    };
    for (const auto &[status, body, outcome] : std::initializer_list<Case>{
             {200, R"({"content":"旧","changed":true,"revision":"r3"})", {Outcome::done{u"旧"_s, u"r3"_s}}},
             {200,
              R"({"content":"","changed":false,"revision":"r2","note":"锁住了"})",
              {Outcome::unchanged{u"锁住了"_s}}},
             {200,
              R"({"content":"","changed":false,"revision":"r2"})",
              {Outcome::unchanged{u"这条已经是上一版的说法了，没有改动。"_s}}},
             {409, "{}", {Outcome::conflict{}}},
             {500, R"({"reason":"x"})", {Outcome::failed{u"未确认改回结果，请先检查最新记忆。"_s}}},
             {200, "[]", {Outcome::failed{u"未确认改回结果，请先检查最新记忆。"_s}}}}) {
        server.on("/api/app/memory/revert", StubServer::reply(status, body));
        EXPECT_EQ(await(service().revert(u"m1"_s, u"r2"_s)), outcome) << status << body.constData();
    }
}

TEST_F(MemoryServiceTest, AnUndoPostsBackTheWholeItem) {
    const QByteArray item = R"({"id":"m1","content":"c","kind":"k","truth":"pref","source":"s","confidence":"高",)"
                            R"("scope":"全部","frozen":false,"later":{"x":[1]}})";
    server.on("/api/app/memory/forget", StubServer::reply(200, R"({"item":)" + item + "}"));
    server.on("/api/app/memory/restore", StubServer::reply(200, "{}"));
    const auto forgotten = await(service().forget(u"m1"_s));
    ASSERT_TRUE(forgotten && forgotten->item);
    EXPECT_TRUE(await(service().restore(*forgotten->item)));
    EXPECT_EQ(boost::json::parse(server.requests[1].body.toStdString()),
              boost::json::parse((R"({"item":)" + item + "}").toStdString()));
}

TEST(MemoryTextsTest, TheOlderWordingIsCutByCharacters) {
    EXPECT_EQ(MemoryTexts::confirmedInPlaceOf(u"爱喝茶"_s),
              u"已收下，并取代了更早的「爱喝茶…」；旧条仍可在「已取代」中查看。"_s);
    EXPECT_EQ(MemoryTexts::confirmedInPlaceOf(QString(20, u'长')),
              u"已收下，并取代了更早的「"_s + QString(14, u'长') + u"…」；旧条仍可在「已取代」中查看。"_s);
    const QString family = u"👨‍👩‍👧"_s;
    EXPECT_TRUE(
        MemoryTexts::confirmedInPlaceOf(family.repeated(20)).contains(u"「"_s + family.repeated(14) + u"…」"_s));
}

TEST(MemoryImportTest, OnePieceALine) {
    const auto pieces = [](const QString &text) {
        QStringList list;
        for (const auto &message : MemoryImport::messages(text))
            list.push_back(message.content);
        return list;
    };
    EXPECT_EQ(pieces(u"一\r\n\n  二 \n"_s), (QStringList{u"一"_s, u"二"_s}));
    EXPECT_EQ(pieces(u"只有一句"_s), (QStringList{u"只有一句"_s, u"（补充：以上就是我想让你记住的内容）"_s}));
    EXPECT_EQ(pieces(u" \n\t\n"_s), QStringList());
    EXPECT_EQ(pieces(u"x\n"_s.repeated(100)).size(), 60);
}

} // namespace lmp
