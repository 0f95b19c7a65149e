#include "WindowFixture.h"
#include "identity/CrisisTexts.h"

#include <QAccessible>
#include <QClipboard>
#include <QDir>
#include <QGuiApplication>
#include <QTest>

namespace lmp {

using namespace Qt::StringLiterals;
using Stage = WindowScene::Stage;
using Tab = WindowNavigation::Tab;

class WindowTest : public WindowFixture {};

TEST_F(WindowTest, FromTheFirstStartToTheFirstReply) {
    WindowDriver window(options());
    ASSERT_TRUE(window.reaches(Stage::SignedOut));

    // The cursor is where one begins to type, and the sandbox hands the code back.
    ASSERT_TRUE(window.shows(u"手机号"_s));
    window.type(u"13900000008"_s);
    ASSERT_TRUE(window.click(u"发送验证码"_s));
    ASSERT_TRUE(eventually([&] { return !window.scene().session()->signIn()->code().isEmpty(); }));
    window.key(Qt::Key_Return);

    ASSERT_TRUE(window.reaches(Stage::Migration));
    ASSERT_TRUE(window.click(CrisisTexts::entry()));
    ASSERT_TRUE(window.shows(u"AI 不接手"_s)) << "nobody has to come in first";
    window.key(Qt::Key_Escape);
    ASSERT_TRUE(window.hides(u"AI 不接手"_s));
    ASSERT_TRUE(window.click(u"看隐私说明"_s));
    ASSERT_TRUE(window.shows(u"求助热线页不用登录"_s));
    window.key(Qt::Key_Escape);
    ASSERT_TRUE(window.hides(u"求助热线页不用登录"_s));
    ASSERT_TRUE(window.click(u"知道了"_s));
    ASSERT_TRUE(window.reaches(Stage::Onboarding));
    for (int step = 0; step < 3; ++step)
        window.key(Qt::Key_Return);
    ASSERT_TRUE(window.reaches(Stage::HandleSetup));
    ASSERT_TRUE(window.click(u"以后再说"_s));
    ASSERT_TRUE(window.reaches(Stage::Shell));

    ASSERT_TRUE(eventually([&] { return window.scene().chat()->isOpen() && window.find(u"ChatPage"_s); }));
    window.type(u"你好呀"_s);
    window.key(Qt::Key_Return);
    EXPECT_TRUE(window.shows(u"你好呀"_s));
    EXPECT_TRUE(eventually([&] { return window.scene().chat()->lastChargeText() == u"3 Pip"_s; }));
    EXPECT_TRUE(window.shows(u"余额 997 Pip"_s));
    EXPECT_EQ(window.scene().conversations()->rowCount(), 1);
}

TEST_F(WindowTest, AServiceThatThinksItOverIsWaitedForInTheWindow) {
    signInBefore();
    fault(R"({"route":"/app/auth/me","times":1,"delayMs":2500})");
    WindowDriver window(options());
    EXPECT_EQ(window.scene().stage(), Stage::Launch);
    EXPECT_TRUE(window.shows(u"正在启动…"_s));
    EXPECT_TRUE(window.window().isVisible());
    EXPECT_EQ(window.scene().stage(), Stage::Launch);
    ASSERT_TRUE(window.enterShell());
    EXPECT_TRUE(window.hides(u"正在启动…"_s));
    window.type(u"在吗"_s);
    EXPECT_EQ(window.scene().chat()->input(), u"在吗"_s);
}

TEST_F(WindowTest, EverythingIsReachedByKeys) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    auto *navigation = window.scene().navigation();
    const auto focused = [&](const QString &type) {
        return eventually([&] {
            const QQuickItem *item = window.find(type);
            return item && item->hasActiveFocus();
        });
    };

    window.type(u"没说完的话"_s);
    window.key(Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(navigation->tab(), Tab::Social);
    EXPECT_TRUE(window.shows(u"这个版本还没有做好"_s));
    // What the service says of the features of this tab stands there too.
    EXPECT_TRUE(window.shows(u"语音房 · 不可用"_s));
    window.key(Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_EQ(navigation->tab(), Tab::Me);
    EXPECT_TRUE(window.shows(u"界面大小"_s));
    // In the ledger what is looked for are memories.
    navigation->openMemory();
    ASSERT_TRUE(window.shows(u"还没有记住关于你的事"_s));
    window.type(u"猫"_s);
    EXPECT_EQ(window.scene().ledger()->searchText(), u"猫"_s) << "its field has the keyboard";
    window.key(Qt::Key_F6);
    window.key(Qt::Key_F, Qt::ControlModifier);
    window.type(u"狗"_s);
    EXPECT_EQ(window.scene().ledger()->searchText(), u"狗"_s);
    EXPECT_EQ(navigation->tab(), Tab::Me);
    window.key(Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(navigation->tab(), Tab::Now);
    EXPECT_EQ(window.scene().chat()->input(), u"没说完的话"_s);

    // From region to region, and along the tabs with the arrows.
    window.key(Qt::Key_F6);
    EXPECT_TRUE(focused(u"SidebarTabs"_s));
    window.key(Qt::Key_Down);
    window.key(Qt::Key_Return);
    EXPECT_EQ(navigation->tab(), Tab::Social);
    window.key(Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(focused(u"LMPComposer"_s)) << "whoever goes there by a key means to write";
    window.key(Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(focused(u"ChatFindBar"_s));
    window.key(Qt::Key_Escape);
    EXPECT_TRUE(focused(u"LMPComposer"_s));
    window.scene().commands()->run(AppCommands::Command::FindList);
    EXPECT_TRUE(focused(u"ConversationList"_s));
    window.key(Qt::Key_F6);
    EXPECT_TRUE(focused(u"ChatPage"_s));
    window.key(Qt::Key_B, Qt::ControlModifier);
    EXPECT_TRUE(window.scene().layout()->sidebarCollapsed());
}

TEST_F(WindowTest, TheSwitcherGoesByPinyin) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    window.type(u"重庆的春天是什么样的"_s);
    window.key(Qt::Key_Return);
    ASSERT_TRUE(eventually([&] { return window.scene().conversations()->rowCount() == 1; }));
    const QString spring = window.scene().chat()->conversationId();
    window.key(Qt::Key_N, Qt::ControlModifier);
    ASSERT_TRUE(eventually([&] { return window.scene().chat()->conversationId() != spring; }));

    auto *switcher = window.scene().switcher();
    window.key(Qt::Key_K, Qt::ControlModifier);
    ASSERT_TRUE(window.shows(u"检查更新"_s));
    // The new conversation asks for the keyboard when it is there, and the switcher takes it back.
    ASSERT_TRUE(eventually([&] {
        const QQuickItem *panel = window.find(u"SwitcherPanel"_s);
        return panel && panel->hasActiveFocus();
    }));
    const auto panel = [&] {
        const QQuickItem *item = window.find(u"SwitcherPanel"_s);
        return QRectF(item->mapToScene({}), item->size());
    };
    const QRectF all = panel();
    window.type(u"cq"_s);
    ASSERT_TRUE(eventually([&] { return switcher->count() == 1; }));
    ASSERT_TRUE(eventually([&] { return panel().height() < all.height(); }));
    EXPECT_EQ(panel().y(), all.y()) << "what is typed stays where it is";
    // Keys belong to what is being composed, as long as it is.
    window.compose(u"de"_s);
    window.key(Qt::Key_Return);
    window.key(Qt::Key_Escape);
    EXPECT_NE(window.find(u"LMPTextField"_s, {}), nullptr);
    EXPECT_NE(window.scene().chat()->conversationId(), spring);
    window.compose({});
    window.key(Qt::Key_Return);
    EXPECT_TRUE(eventually([&] { return window.scene().chat()->conversationId() == spring; }));

    window.key(Qt::Key_K, Qt::ControlModifier);
    ASSERT_TRUE(window.shows(u"检查更新"_s));
    ASSERT_TRUE(eventually([&] {
        const QQuickItem *panel = window.find(u"SwitcherPanel"_s);
        return panel && panel->hasActiveFocus();
    }));
    window.type(u"shezhi"_s);
    ASSERT_TRUE(eventually([&] { return switcher->count() >= 1; }));
    window.key(Qt::Key_Return);
    EXPECT_EQ(window.scene().navigation()->tab(), Tab::Me);
}

TEST_F(WindowTest, WhatIsSetIsThereAtTheNextStart) {
    signInBefore();
    {
        WindowDriver window(options());
        ASSERT_TRUE(window.enterShell());
        EXPECT_TRUE(window.shows(u"可以发送使用情况"_s));
        // A key that was pressed before it could be read answers nothing.
        window.find(u"LMPButton"_s, u"同意"_s)->forceActiveFocus(Qt::TabFocusReason);
        window.key(Qt::Key_Return);
        EXPECT_TRUE(window.scene().telemetry()->asking());
        window.find(u"LMPButton"_s, u"不同意"_s)->forceActiveFocus(Qt::TabFocusReason);
        EXPECT_TRUE(eventually([&] {
            window.key(Qt::Key_Return);
            return !window.scene().telemetry()->asking();
        }));
        EXPECT_TRUE(window.hides(u"可以发送使用情况"_s));
        window.type(u"接着说"_s);
        EXPECT_EQ(window.scene().chat()->input(), u"接着说"_s) << "the keyboard goes on where one types";
        window.key(Qt::Key_Comma, Qt::ControlModifier);
        ASSERT_TRUE(window.click(u"深色"_s));
        const QQuickItem *chosen = window.window().activeFocusItem();
        const QRectF before(chosen->mapToScene({}), chosen->size());
        window.key(Qt::Key_Plus, Qt::ControlModifier);
        EXPECT_EQ(window.scene().appearance()->scaleStep(), 2);
        EXPECT_TRUE(eventually([&] {
            return chosen->height() > before.height() && std::abs(chosen->mapToScene({}).y() - before.y()) < 1;
        })) << "what one is at stays where it is";
        window.scene().layout()->setSidebarWidth(300);
        ASSERT_TRUE(window.quits());
    }
    signInBefore(); // the token is gone once it has been read
    WindowDriver window(options());
    // Before the first paint: nothing flashes in the wrong colours.
    EXPECT_TRUE(window.scene().appearance()->dark());
    EXPECT_EQ(window.window().color(), QColor(0x17, 0x18, 0x1A));
    EXPECT_EQ(window.scene().appearance()->scale(), 1.15);
    EXPECT_EQ(window.scene().layout()->sidebarWidth(), 300);
    ASSERT_TRUE(window.enterShell());
    EXPECT_TRUE(window.hides(u"可以发送使用情况"_s));
    EXPECT_FALSE(window.scene().telemetry()->consent());
}

TEST_F(WindowTest, NothingTypedIsLostByLeaving) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    bool full = true;
    const auto other = window.program().application().localInput().add([&full]() -> QCoro::Task<bool> {
        return [](bool saved) -> QCoro::Task<bool> {
            co_return saved;
        }(!full);
    });

    // Every way to leave asks the same.
    window.window().close();
    ASSERT_TRUE(window.shows(u"未执行输入尚未保存"_s));
    EXPECT_TRUE(window.shows(u"本地输入暂未保存，应用仍保持打开。请重试保存后再退出。"_s));
    EXPECT_TRUE(window.window().isVisible());
    // Keys of the window do nothing behind the question.
    window.key(Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(window.scene().navigation()->tab(), Tab::Now);
    ASSERT_TRUE(window.listens(u"未执行输入尚未保存"_s));
    ASSERT_TRUE(window.click(u"返回应用"_s));
    ASSERT_TRUE(window.hides(u"未执行输入尚未保存"_s));
    EXPECT_EQ(window.program().quitting().state(), MacQuitCoordinator::State::Idle);
    EXPECT_TRUE(eventually([&] { return window.find(u"LMPComposer"_s)->hasActiveFocus(); }));

    window.key(Qt::Key_Q, Qt::ControlModifier);
    ASSERT_TRUE(window.shows(u"未执行输入尚未保存"_s));
    ASSERT_TRUE(window.listens(u"未执行输入尚未保存"_s));
    ASSERT_TRUE(window.click(u"重试保存并退出"_s));
    EXPECT_TRUE(eventually([&] { return window.program().quitting().state() == MacQuitCoordinator::State::Warning; }));
    full = false;
    EXPECT_TRUE(
        eventually([&] { return window.click(u"重试保存并退出"_s) && window.program().quitting().resolved(); }));
    EXPECT_TRUE(eventually([&] { return !window.window().isVisible(); }));
}

TEST_F(WindowTest, WhatNobodyKeepsIsNotThrownAwayUnasked) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(typesIncognito(window));
    const QString talk = window.scene().chat()->conversationId();

    window.window().close();
    ASSERT_TRUE(window.shows(u"关闭后，这段无痕对话将无法找回。"_s));
    window.key(Qt::Key_Escape);
    ASSERT_TRUE(window.hides(u"无法找回"_s));
    EXPECT_TRUE(window.window().isVisible());
    window.key(Qt::Key_Q, Qt::ControlModifier);
    ASSERT_TRUE(window.shows(u"退出后，这段无痕对话将无法找回。"_s));
    ASSERT_TRUE(window.click(u"留在这里"_s));
    ASSERT_TRUE(window.hides(u"无法找回"_s));
    EXPECT_EQ(window.scene().chat()->conversationId(), talk);
    EXPECT_EQ(window.scene().chat()->input(), u"只在这里说"_s);
    EXPECT_EQ(window.program().quitting().state(), MacQuitCoordinator::State::Idle);

    bool leaving = false;
    QObject::connect(&window.program(), &WindowApplication::leaving, &window.program(), [&] { leaving = true; });
    window.key(Qt::Key_Q, Qt::ControlModifier);
    ASSERT_TRUE(window.click(u"退出"_s));
    EXPECT_TRUE(eventually([&] { return leaving; }));
}

TEST_F(WindowTest, TheMenuKeyOpensWhatTheRightButtonDoes) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    window.type(u"几个字"_s);
    for (const auto &[key, modifier] : {std::pair(Qt::Key_Menu, Qt::NoModifier), {Qt::Key_F10, Qt::ShiftModifier}}) {
        // What is being composed has every key.
        window.compose(u"zi"_s);
        window.key(key, modifier);
        settle();
        EXPECT_EQ(window.find(u"LMPMenuItem"_s, u"全选"_s), nullptr);
        window.compose({});
        window.key(key, modifier);
        EXPECT_TRUE(window.shows(u"全选"_s)) << key << QGuiApplication::focusObject()->metaObject()->className();
        window.key(Qt::Key_Escape);
        EXPECT_TRUE(window.hides(u"全选"_s));
    }
    window.key(Qt::Key_Return);
    ASSERT_TRUE(eventually([&] { return window.scene().chat()->lastChargeText() == u"3 Pip"_s; }));
    QQuickItem *text = nullptr;
    ASSERT_TRUE(eventually([&] { return (text = window.find(u"MarkdownText"_s)) != nullptr; }));
    text->forceActiveFocus(Qt::TabFocusReason);
    QMetaObject::invokeMethod(text, "selectAll");
    window.key(Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_TRUE(window.click(u"拷贝"_s));
    EXPECT_FALSE(QGuiApplication::clipboard()->text().isEmpty());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), text->property("selectedText").toString());
}

TEST_F(WindowTest, ALeftReplyIsToldAndTheSidebarSpeaks) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    window.type(u"讲一个很长的故事"_s);
    window.key(Qt::Key_Return);
    ASSERT_TRUE(window.scene().chat()->sending());
    window.scene().startConversation();
    EXPECT_FALSE(window.scene().chat()->sending());
    EXPECT_TRUE(window.shows(u"刚才那段对话的回答已停止"_s));
    window.scene().closeNotice();
    EXPECT_TRUE(window.hides(u"刚才那段对话的回答已停止"_s));

    // A screen reader reads the width, and sets it.
    auto *handle = QAccessible::queryAccessibleInterface(window.find(u"SidebarHandle"_s));
    ASSERT_TRUE(handle && handle->valueInterface());
    EXPECT_EQ(handle->valueInterface()->currentValue().toInt(), 248);
    EXPECT_EQ(handle->valueInterface()->minimumValue().toInt(), WindowLayout::narrowestSidebar);
    EXPECT_EQ(handle->valueInterface()->maximumValue().toInt(), WindowLayout::widestSidebar);
    handle->valueInterface()->setCurrentValue(300);
    EXPECT_EQ(window.scene().layout()->sidebarWidth(), 300);
    window.scene().layout()->setSidebarWidth(1000);
    EXPECT_EQ(handle->valueInterface()->currentValue().toInt(), WindowLayout::widestSidebar);
}

TEST_F(WindowTest, WhatIsBeingComposedStaysWhereItWasBegun) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    ChatModel *chat = window.scene().chat();
    ASSERT_TRUE(eventually([&] { return window.find(u"LMPComposer"_s) && chat->isOpen(); }));
    window.type(u"你好"_s);
    window.key(Qt::Key_Return);
    ASSERT_TRUE(eventually([&] { return chat->messages()->rowCount() == 2 && chat->isIdle(); }));
    const QString talk = chat->conversationId();

    window.type(u"写"_s);
    window.compose(u"ni"_s);
    window.key(Qt::Key_N, Qt::ControlModifier);
    ASSERT_TRUE(eventually([&] { return chat->conversationId() != talk && chat->isOpen(); }));
    EXPECT_EQ(chat->input(), QString());
    EXPECT_EQ(window.find(u"LMPComposer"_s)->property("text").toString(), QString());
    window.scene().openConversation(talk);
    ASSERT_TRUE(eventually([&] { return chat->conversationId() == talk && chat->isOpen(); }));
    EXPECT_EQ(window.find(u"LMPComposer"_s)->property("text").toString(), u"写ni"_s);
}

TEST_F(WindowTest, WhoLeavesBeforeThereIsAWindowSeesNone) {
    signInBefore();
    WindowApplication program(options(), SystemClock().monotonic());
    bool left = false;
    QObject::connect(&program, &WindowApplication::left, &program, [&] { left = true; });
    program.start();
    program.quitting().requestTermination();
    EXPECT_TRUE(eventually([&] { return left; }));
    settle();
    EXPECT_EQ(program.window(), nullptr);
    WindowDriver::endLoop();
}

TEST_F(WindowTest, WindowsThatCloseTogetherEndTheProgram) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    QQuickWindow *first = &window.window();
    window.key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(eventually([&] { return &window.window() != first; }));
    bool leaving = false;
    QObject::connect(&window.program(), &WindowApplication::leaving, &window.program(), [&] { leaving = true; });
    // As a task bar closes a group: the second is asked while what is typed in the first is being saved.
    first->close();
    window.window().close();
    EXPECT_TRUE(eventually([&] { return leaving; }));
}

TEST_F(WindowTest, AQuestionDoesNotGoWithItsWindow) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    QQuickWindow *first = &window.window();
    WindowScene *firstScene = &window.scene();
    window.key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_TRUE(eventually([&] { return &window.window() != first; }));
    const auto full = window.program().application().localInput().add([]() -> QCoro::Task<bool> { co_return false; });

    first->requestActivate();
    ASSERT_TRUE(eventually([&] { return first->isActive(); }));
    QTest::keyClick(first, Qt::Key_Q, Qt::ControlModifier);
    ASSERT_TRUE(eventually([&] { return firstScene->questions()->hostsProgram(); }));
    // Asked in the other window, it is answered there.
    window.window().requestActivate();
    ASSERT_TRUE(eventually([&] { return window.window().isActive(); }));
    window.key(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(window.shows(u"未执行输入尚未保存"_s));
    EXPECT_FALSE(firstScene->questions()->hostsProgram());
    // And where that one is closed by its frame, in what is left.
    window.window().close();
    ASSERT_TRUE(eventually([&] { return &window.window() == first; }));
    EXPECT_TRUE(window.shows(u"未执行输入尚未保存"_s));
    ASSERT_TRUE(window.listens(u"未执行输入尚未保存"_s));
    ASSERT_TRUE(window.click(u"返回应用"_s));
    EXPECT_TRUE(eventually([&] { return window.program().quitting().state() == MacQuitCoordinator::State::Idle; }));
}

TEST_F(WindowTest, WhoSignsInNextBeginsAtTheFirstTab) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(window.enterShell());
    window.key(Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_EQ(window.scene().navigation()->tab(), Tab::Me);
    window.scene().session()->signOut();
    ASSERT_TRUE(window.reaches(Stage::SignedOut));
    EXPECT_TRUE(eventually([&] { return window.scene().navigation()->tab() == Tab::Now; }));
}

TEST_F(WindowTest, AQuestionGoesWithWhatItIsAbout) {
    signInBefore();
    WindowDriver window(options());
    ASSERT_TRUE(typesIncognito(window));
    window.key(Qt::Key_Q, Qt::ControlModifier);
    ASSERT_TRUE(window.shows(u"退出后，这段无痕对话将无法找回。"_s));
    // As from another window.
    window.scene().session()->signOut();
    ASSERT_TRUE(window.reaches(Stage::SignedOut));
    EXPECT_TRUE(window.hides(u"无法找回"_s));
    window.type(u"13900000008"_s);
    EXPECT_EQ(window.scene().session()->signIn()->phone(), u"13900000008"_s) << "the form has the keyboard";
}

TEST_F(WindowTest, LinksGoTheSameWayColdAndWarm) {
    {
        WindowDriver window(options(u"lumenpair://crisis"_s));
        // Nobody needs an account for this one.
        EXPECT_TRUE(window.shows(u"AI 不接手"_s));
        // The form that comes up behind it wants the keyboard, and does not get it.
        ASSERT_TRUE(window.reaches(Stage::SignedOut));
        settle();
        window.key(Qt::Key_Escape);
        EXPECT_TRUE(eventually([&] { return !window.scene().navigation()->crisisOpen(); }));
        ASSERT_TRUE(window.quits());
    }
    signInBefore();
    WindowDriver window(options(u"lumenpair://object/mission/m_1"_s));
    ASSERT_TRUE(window.enterShell());
    EXPECT_TRUE(window.shows(u"打不开这一项"_s));
    ASSERT_TRUE(window.click(u"回到刚才的页面"_s));
    EXPECT_TRUE(window.hides(u"打不开这一项"_s));

    const auto again = [&](const QString &link) {
        window.program().takeOver({.arguments = {link}, .activationToken = {}});
    };
    window.program().takeOver({.arguments = {}, .activationToken = {}, .site = m_site.toString()});
    EXPECT_TRUE(window.scene().notice().isEmpty());
    window.program().takeOver({.arguments = {}, .activationToken = {}, .site = u"http://elsewhere.invalid"_s});
    EXPECT_TRUE(window.shows(SingleInstance::otherSiteText()));
    again(u"lumenpair://studio"_s);
    EXPECT_EQ(window.scene().navigation()->tab(), Tab::Studio);
    again(u"lumenpair://conversation/c_77"_s);
    EXPECT_EQ(window.scene().navigation()->tab(), Tab::Now);
    EXPECT_TRUE(eventually([&] { return window.scene().chat()->conversationId() == u"c_77"_s; }));
    again(u"lumenpair://object/mission/m_1"_s);
    ASSERT_TRUE(window.shows(u"打不开这一项"_s));
    // The same place again is seen as new. The one thing to do there has the keyboard.
    window.key(Qt::Key_Return);
    ASSERT_TRUE(window.hides(u"打不开这一项"_s));
    again(u"lumenpair://object/mission/m_1"_s);
    EXPECT_TRUE(window.shows(u"打不开这一项"_s));
}

TEST_F(WindowTest, TheLauncherOpensOneWindowOfAProfile) {
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DISPLAY"_s, u":none"_s);
    environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    const QString launcher = QCoreApplication::applicationDirPath() + u"/lumenpair"_s;
    const auto start = [&](QProcess &program, const QStringList &arguments) {
        program.setProcessEnvironment(environment);
        program.setStandardInputFile(QProcess::nullDevice());
        program.start(launcher, arguments);
    };
    const QStringList here{u"--site"_s, m_site.toString()};
    QProcess first, second, third;
    start(first, here);
    const QDir runtime(m_home.path());
    ASSERT_TRUE(eventually([&] { return !runtime.entryList({u"*lumenpair*"_s}, QDir::System).isEmpty(); }, 30'000));
    start(second, here + QStringList{u"lumenpair://studio"_s});
    EXPECT_TRUE(eventually([&] { return second.state() == QProcess::NotRunning; }, 30'000));
    EXPECT_EQ(second.exitCode(), 0) << second.readAllStandardError().toStdString();
    EXPECT_EQ(first.state(), QProcess::Running);
    start(third, {u"--site"_s, u"http://elsewhere.invalid"_s});
    EXPECT_TRUE(eventually([&] { return third.state() == QProcess::NotRunning; }, 30'000));
    EXPECT_EQ(third.exitCode(), 1);
    EXPECT_TRUE(QString::fromUtf8(third.readAllStandardError()).contains(SingleInstance::otherSiteText()));
    first.terminate();
    EXPECT_TRUE(eventually([&] { return first.state() == QProcess::NotRunning; }, 30'000));
    EXPECT_EQ(first.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(first.exitCode(), 0) << first.readAllStandardError().toStdString();
}

/// What the engine has complained of.
QStringList complaints;
void complain(QtMsgType type, const QMessageLogContext &, const QString &text) {
    if (type != QtDebugMsg)
        complaints << text;
}

TEST_F(WindowTest, AServiceThatIsNotThereIsSaidAndTriedAgain) {
    const auto before = qInstallMessageHandler(complain);
    WindowDriver window({.site = u"http://[broken"_s, .profile = {}, .link = {}});
    EXPECT_TRUE(window.shows(u"地址不合法"_s));
    ASSERT_TRUE(window.click(u"再试一次"_s));
    EXPECT_TRUE(window.shows(u"地址不合法"_s));
    qInstallMessageHandler(before);
    EXPECT_TRUE(complaints.isEmpty()) << complaints.join(u'\n').toStdString();
}

} // namespace lmp
