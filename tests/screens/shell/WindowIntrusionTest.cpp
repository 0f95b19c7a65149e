#include "WindowFixture.h"

#include <csignal>

namespace lmp {

using namespace Qt::StringLiterals;

/// What comes to a window while somebody is at something else.
class WindowIntrusionTest : public WindowFixture {};

TEST_F(WindowIntrusionTest, AnOfferTakesNoKeyThatWasMeantForTheMessage) {
    signInBefore();
    fault(R"({"route":"/downloads/desktop/mac/latest.json","times":1,"delayMs":1500,
              "body":{"version":"9.9","build":999999999,"url":"https://downloads.example/dl"}})");
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    window.type(u"正在打字"_s);
    UpdateChecker *updates = window.scene().updates();
    ASSERT_TRUE(window.shows(u"有新版本 9.9"_s));
    EXPECT_TRUE(window.shows(u"下载页面在 downloads.example"_s));
    ASSERT_TRUE(window.hasKeyboard(u"以后再说"_s));
    window.key(Qt::Key_Return);
    EXPECT_TRUE(updates->isAlertOpen()) << "it could not have been read yet";
    ASSERT_TRUE(window.listens(u"有新版本"_s));
    window.key(Qt::Key_Return);
    EXPECT_FALSE(updates->isAlertOpen());
    EXPECT_EQ(window.scene().chat()->input(), u"正在打字"_s);

    // Whoever asks is answered at once.
    ASSERT_TRUE(window.hides(u"有新版本"_s));
    fault(R"({"route":"/downloads/desktop/mac/latest.json","times":1,"status":404})");
    updates->check(true);
    ASSERT_TRUE(window.shows(u"更新通道尚未开通"_s));
    ASSERT_TRUE(window.hasKeyboard(u"好"_s));
    window.key(Qt::Key_Return);
    EXPECT_FALSE(updates->isAlertOpen());
}

TEST_F(WindowIntrusionTest, WhatEndsTheProgramIsAskedOverTheCrisisPageAndNothingElseIs) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    window.scene().navigation()->openCrisis();
    ASSERT_TRUE(window.shows(u"AI 不接手"_s));
    fault(R"({"route":"/downloads/desktop/mac/latest.json","times":1,"status":404})");
    window.scene().updates()->check(true);
    ASSERT_TRUE(window.shows(u"更新通道尚未开通"_s));
    settle();
    EXPECT_FALSE(window.find(u"LMPButton"_s, u"好"_s)->hasActiveFocus()) << "nobody sees it";

    const auto full = window.program().application().localInput().add([]() -> QCoro::Task<bool> { co_return false; });
    ::raise(SIGTERM);
    ASSERT_TRUE(window.hasKeyboard(u"返回应用"_s));
    ASSERT_TRUE(window.listens(u"未执行输入尚未保存"_s));
    ASSERT_TRUE(window.click(u"返回应用"_s));
    ASSERT_TRUE(window.hides(u"未执行输入尚未保存"_s));
    EXPECT_TRUE(window.scene().navigation()->crisisOpen());
    window.key(Qt::Key_Escape);
    EXPECT_TRUE(eventually([&] { return !window.scene().navigation()->crisisOpen(); })) << "it has the keyboard again";
    EXPECT_TRUE(window.hasKeyboard(u"好"_s)) << "and then what waited behind it";
    window.key(Qt::Key_Return);
    EXPECT_TRUE(eventually([&] { return window.find(u"LMPComposer"_s)->hasActiveFocus(); })) << "and then the person";

    // A link can wait, whatever it would put away.
    ASSERT_TRUE(typesIncognito(window));
    window.scene().navigation()->openCrisis();
    ASSERT_TRUE(window.shows(u"AI 不接手"_s));
    settle();
    QQuickItem *before = window.window().activeFocusItem();
    window.program().takeOver({.arguments = {u"lumenpair://conversation/c_other"_s}, .activationToken = {}});
    ASSERT_TRUE(eventually([&] { return window.scene().questions()->leaveWarning(); }));
    settle();
    EXPECT_EQ(window.window().activeFocusItem(), before);
    // What the person asks for takes its place, in front.
    window.window().close();
    ASSERT_TRUE(window.shows(u"关闭窗口？"_s));
    ASSERT_TRUE(window.listens(u"关闭窗口？"_s));
    ASSERT_TRUE(window.hasKeyboard(u"留在这里"_s));
    window.key(Qt::Key_Escape);
    EXPECT_TRUE(window.hides(u"关闭窗口？"_s));
    EXPECT_FALSE(window.scene().questions()->leaveWarning());
    EXPECT_TRUE(window.scene().navigation()->crisisOpen());
}

TEST_F(WindowIntrusionTest, ALinkAsksBeforeItStopsAReply) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    ChatModel *chat = window.scene().chat();
    const auto answering = [&] {
        fault(R"({"route":"/relay/chat/stream","times":1,"stallAfterEvents":1})");
        window.type(u"讲一个很长的故事"_s);
        window.key(Qt::Key_Return);
        return eventually([&] { return chat->sending(); });
    };
    const auto follow = [&](const QString &id) {
        window.program().takeOver({.arguments = {u"lumenpair://conversation/"_s + id}, .activationToken = {}});
    };
    ASSERT_TRUE(answering());
    const QString story = chat->conversationId();
    follow(story);
    EXPECT_FALSE(window.scene().questions()->leaveWarning()) << "there already";
    follow(u"c_nobody_has"_s);
    ASSERT_TRUE(window.shows(u"停下正在写的回答？"_s));
    EXPECT_TRUE(chat->sending());
    ASSERT_TRUE(window.listens(u"停下正在写的回答？"_s));
    ASSERT_TRUE(window.click(u"留在这里"_s));
    ASSERT_TRUE(window.hides(u"停下正在写的回答？"_s));
    EXPECT_TRUE(chat->sending());
    EXPECT_EQ(chat->conversationId(), story);

    follow(u"c_other"_s);
    ASSERT_TRUE(window.shows(u"停下正在写的回答？"_s));
    ASSERT_TRUE(window.listens(u"停下正在写的回答？"_s));
    ASSERT_TRUE(window.click(u"停下并打开"_s));
    EXPECT_TRUE(eventually([&] { return chat->conversationId() == u"c_other"_s; }));
    EXPECT_FALSE(chat->sending());
    EXPECT_TRUE(window.shows(u"刚才那段对话的回答已停止"_s));

    // A click is one's own word.
    window.scene().openConversation(story);
    ASSERT_TRUE(eventually([&] { return chat->conversationId() == story && chat->isOpen() && chat->isIdle(); }));
    ASSERT_TRUE(answering());
    window.scene().openConversation(u"c_other"_s);
    EXPECT_FALSE(chat->sending());
    EXPECT_FALSE(window.scene().questions()->leaveWarning());
}

TEST_F(WindowIntrusionTest, ALinkDoesNotTakeTheCrisisPageAway) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    auto *navigation = window.scene().navigation();
    navigation->openCrisis();
    ASSERT_TRUE(window.shows(u"AI 不接手"_s));
    for (const QString &link :
         {u"lumenpair://studio"_s, u"lumenpair://conversation/c_7"_s, u"lumenpair://object/mission/m"_s}) {
        window.program().takeOver({.arguments = {link}, .activationToken = {}});
        settle();
        EXPECT_TRUE(navigation->crisisOpen()) << link.toStdString();
        EXPECT_TRUE(window.shows(u"AI 不接手"_s)) << link.toStdString();
    }
    window.key(Qt::Key_Escape);
    EXPECT_TRUE(window.hides(u"AI 不接手"_s));
    EXPECT_FALSE(navigation->crisisOpen());
    EXPECT_TRUE(window.shows(u"打不开这一项"_s)) << "where the last one led";
}

} // namespace lmp
