#include "screens/chat/ConversationSearchModel.h"

#include "ChatModelFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;

class ConversationSearchModelTest : public ChatModelFixture {
protected:
    ConversationSearchModelTest() {
        server.on("/api/app/conversations",
                  StubServer::reply(200, R"({"conversations":[{"id":"a","title":"a"},{"id":"b","title":"b"}]})"));
        has("a", {"茶 1", "水", "茶 2"});
        has("b", {"茶 3", "茶 4"});
    }
    void has(const QByteArray &id, const QByteArrayList &texts) {
        QByteArrayList messages;
        for (const QByteArray &text : texts)
            messages << R"({"id":")" + id + QByteArray::number(messages.size()) + R"(","role":"user","text":")" + text +
                            "\"}";
        server.on("/api/app/conversation?id=" + id, StubServer::reply(200, conversation(id, messages.join(','))));
    }
    QStringList shown() const {
        QStringList texts;
        for (int row = 0; row < model.rowCount(); ++row)
            texts << model.data(model.index(row), ConversationSearchModel::SpokenRole).toString().section(u'：', 1);
        return texts;
    }
    bool shows(const QStringList &texts) {
        return eventually([&] { return shown() == texts; });
    }

    ConversationSearch search{
        ConversationService(api), ConversationDraftCache(support), services().account, support, u"here"_s, clock};
    ConversationSearchModel model{search};
    QAbstractItemModelTester modelTester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(ConversationSearchModelTest, WhatGrowsDoesNotDisturbTheReader) {
    await(search.catchUp());
    model.setQuery(u"茶"_s);
    ASSERT_TRUE(shows({u"茶 2"_s, u"茶 1"_s, u"茶 4"_s, u"茶 3"_s}));
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset), inserted(&model, &QAbstractItemModel::rowsInserted),
        removed(&model, &QAbstractItemModel::rowsRemoved);
    model.setCurrent(2);
    // Said just now: above; gone elsewhere: no more; in other words: where it was.
    ConversationSession session(ConversationService(api), ConversationDraftCache(support), services().account, clock);
    search.follow(&session);
    has("a", {"茶 1！", "水", "水", "茶 5"});
    ASSERT_TRUE(await(session.load(u"a"_s)));
    ASSERT_TRUE(shows({u"茶 5"_s, u"茶 1！"_s, u"茶 4"_s, u"茶 3"_s}));
    EXPECT_EQ(reset.size(), 0);
    EXPECT_EQ(model.current(), 2) << "茶 4 still";
    EXPECT_LE(inserted.size(), 2);
    EXPECT_LE(removed.size(), 2);
}

} // namespace lmp
