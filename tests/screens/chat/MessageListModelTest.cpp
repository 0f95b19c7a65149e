#include "ChatModelFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;

class MessageListModelTest : public ChatModelFixture {
protected:
    MessageListModel *model() { return chat->messages(); }
    /// A conversation of `count` messages with the texts "0", "1" and so on.
    void loadLong(int count) {
        QByteArray messages;
        for (int number = 0; number < count; ++number)
            messages += (number ? "," : "") + message(QByteArray::number(number));
        server.on("/api/app/conversation?id=long", StubServer::reply(200, conversation("long", messages)));
        load(u"long"_s);
    }
    /// Whether the window holds the messages from `first` on, in their order.
    bool holdsFrom(int first) {
        for (int row = 0; row < model()->rowCount(); ++row) {
            if (text(row) != QString::number(first + row))
                return false;
        }
        return true;
    }
};

TEST_F(MessageListModelTest, AWindowMovesOverALongConversation) {
    loadLong(10'000);
    EXPECT_EQ(model()->rowCount(), MessageListModel::firstRows);
    EXPECT_TRUE(model()->atEnd());
    EXPECT_TRUE(holdsFrom(10'000 - model()->rowCount()));
    int most = 0;
    for (int page = 0; !model()->atStart() && page < 1000; ++page) {
        model()->fetchOlder();
        most = std::max(most, model()->rowCount());
    }
    EXPECT_TRUE(model()->atStart());
    EXPECT_TRUE(holdsFrom(0));
    EXPECT_LE(most, MessageListModel::maxRows);

    // What comes while the person reads far above moves nothing; what the person sends leads to the end.
    QSignalSpy inserted(model(), &QAbstractItemModel::rowsInserted);
    server.on("/api/app/conversation/retry", StubServer::reply(200, R"({"messageId":"r","text":"10000"})"));
    ASSERT_TRUE(chat->retryMessage(u"0"_s));
    ASSERT_TRUE(eventually([this] { return !chat->retrying(); }));
    EXPECT_EQ(model()->total(), 10'001);
    EXPECT_EQ(inserted.size(), 0);
    EXPECT_FALSE(model()->atEnd());
    for (int page = 0; page < 3; ++page)
        model()->fetchNewer();
    EXPECT_TRUE(holdsFrom(120));
    turn(u"10001"_s);
    EXPECT_TRUE(model()->atEnd());
    EXPECT_EQ(text(-2), u"10001"_s);
    EXPECT_EQ(text(-1), u"好"_s);
}

TEST_F(MessageListModelTest, AWindowThatFollowsStaysSmall) {
    loadLong(10);
    for (int number = 10; number < 130; ++number)
        turn(QString::number(number));
    EXPECT_TRUE(model()->atEnd());
    EXPECT_LE(model()->rowCount(), MessageListModel::maxRows + 40);
    EXPECT_EQ(model()->total(), 10 + 2 * 120);
    EXPECT_EQ(text(-2), u"129"_s);
}

TEST_F(MessageListModelTest, AGrowingReplyChangesOneRowThirtyTimesASecond) {
    loadLong(50);
    holdStream();
    chat->setInput(u"在吗"_s);
    ASSERT_TRUE(chat->send());
    say({delta("0")});
    ASSERT_TRUE(eventually([this] { return text(-1) == u"0"_s; }));
    settle();

    QSignalSpy grew(model(), &MessageListModel::grew);
    QSignalSpy changed(model(), &QAbstractItemModel::dataChanged);
    QSignalSpy reset(model(), &QAbstractItemModel::modelReset);
    QString all = u"0"_s;
    constexpr int deltas = 200;
    for (int number = 1; number <= deltas; ++number) {
        all += u' ' + QString::number(number);
        say({delta(" " + QByteArray::number(number))});
        ASSERT_TRUE(eventually([&] { return text(-1) == all; }));
        clock.advance(std::chrono::milliseconds(10));
        settle();
    }
    // Two seconds have passed.
    EXPECT_LE(grew.size(), 60);
    EXPECT_GE(grew.size(), 40) << "and it does not stall";
    EXPECT_LE(changed.size(), grew.size());
    for (const auto &change : changed) {
        EXPECT_EQ(change.at(0).toModelIndex().row(), model()->rowCount() - 1);
        EXPECT_EQ(change.at(1).toModelIndex().row(), model()->rowCount() - 1);
    }
    // Where blocks are drawn they grow in place of the text.
    const QPointer blocks = model()->blocksFor(text(-1, "messageId"));
    changed.clear();
    grew.clear();
    say({delta("\\n\\n- 一"), delta("\\n- 二 **")});
    ASSERT_TRUE(eventually([&] { return text(-1).endsWith(u"二 **"_s); }));
    clock.advance(std::chrono::milliseconds(50));
    ASSERT_TRUE(eventually([&] { return blocks->rowCount() == 3; }));
    EXPECT_TRUE(changed.isEmpty());
    EXPECT_LE(grew.size(), 2);
    say({delta("重**"), done});
    ASSERT_TRUE(eventually([this] { return chat->isIdle(); }));
    EXPECT_EQ(text(-1), all + u"\n\n- 一\n- 二 **重**"_s);
    EXPECT_EQ(reset.size(), 0);
    EXPECT_EQ(model()->blocksFor(text(-1, "messageId")), blocks);
    MarkdownBlockModel whole;
    whole.setText(text(-1));
    whole.finish();
    ASSERT_EQ(blocks->rowCount(), whole.rowCount());
    for (int row = 0; row < whole.rowCount(); ++row)
        EXPECT_EQ(blocks->source(row), whole.source(row));
    EXPECT_FALSE(model()->blocksFor(text(0, "messageId"))) << "only a reply has blocks";

    load(u"a"_s);
    settle();
    EXPECT_FALSE(blocks) << "what is out of sight is not kept";
}

TEST_F(MessageListModelTest, TimesReadDifferentlyLater) {
    loadLong(2);
    turn(u"几点了"_s);
    EXPECT_EQ(shown(-1, "timeText"), u"刚刚"_s);
    clock.advance(std::chrono::minutes(1));
    QVariant seen;
    const auto look = [&] {
        seen = shown(-1, "timeText");
    };
    QObject::connect(model(), &QAbstractItemModel::dataChanged, model(), look);
    EXPECT_TRUE(eventually([&] { return seen.toString().startsWith(u"今天"_s); }));
    for (int hour = 0; hour < 25; ++hour) {
        settle();
        clock.advance(std::chrono::hours(1));
    }
    EXPECT_TRUE(eventually([&] { return seen.toString().startsWith(u"昨天"_s); }));
}

} // namespace lmp
