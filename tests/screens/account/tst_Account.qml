import QtQuick
import QtTest
import Lumenpair.Account
import Lumenpair.AccountBench
import Lumenpair.Kit

/// The launch screen, the handle, the first steps and the account's part of the settings.
ScreenTest {
    id: test

    function check(status: int, body: string): void {
        Bench.answer("/api/app/handle/check", status, body);
        tryVerify(() => Bench.sleepers() > 0);
        Bench.advance(300);
    }

    function failVerification(): void {
        Bench.answer("/api/app/auth/me", 503, '{"reason":"正在维护。"}');
        for (let attempt = 1; attempt <= 3; ++attempt) {
            const before = Bench.count("/api/app/auth/me");
            tryVerify(() => Bench.session.verificationFailed || Bench.sleepers() > 0);
            if (Bench.session.verificationFailed)
                return;
            Bench.advance(2000);
            tryVerify(() => Bench.session.verificationFailed || Bench.count("/api/app/auth/me") > before);
        }
        tryVerify(() => Bench.session.verificationFailed);
    }

    function test_launchIsBlankUnlessItTakesTime() {
        Bench.restartClosed();
        Bench.keychainHolds("t0");
        Bench.keychainHangs(true);
        const view = createTemporaryObject(launch, test);
        Bench.restore();
        verify(!test.shows("正在打开……"));
        Bench.advance(2500);
        test.awaitText("正在等钥匙串回答……");
        Bench.keychainHangs(false);
        tryVerify(() => !Bench.session.waitingOnKeychain);
        test.failVerification();
        test.awaitText("正在维护。");
        tryVerify(() => test.hasKeyboard(test.control("重试")));
        compare(Bench.session.phase, SessionModel.Loading);

        Bench.answer("/api/app/auth/me", 200, '{"userInfo":{"id":"u1"}}');
        keyClick(Qt.Key_Return);
        tryCompare(Bench.session, "phase", SessionModel.SignedIn);
        view.destroy();
    }

    function test_launchLetsSignOut() {
        Bench.restartClosed();
        Bench.keychainHolds("t0");
        verify(createTemporaryObject(launch, test));
        Bench.restore();
        test.failVerification();
        test.press("退出登录");
        test.awaitText("退出登录？");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !test.shows("退出登录？"));
        compare(Bench.session.phase, SessionModel.Loading, "Esc is no answer");
        test.press("退出登录");
        test.awaitText("退出登录？");
        test.press("退出登录");
        tryCompare(Bench.session, "phase", SessionModel.SignedOut);
    }

    function test_handle() {
        Bench.restart();
        Bench.answer("/api/app/handle/suggest", 200, '{"suggestions":["lin_1","lin_2"]}');
        Bench.signIn('{"id":"u1"}');
        createTemporaryObject(handleSetup, test);
        finishes.clear();
        tryVerify(() => test.hasKeyboard(test.field("主页名")));
        tryVerify(() => test.control("lin_1") !== null);
        test.type("主页名", "lin");
        test.check(500, "");
        test.awaitText("查不了，检查下网络");
        keyClick("x");
        test.check(200, '{"available":false,"reason":"有人用了。"}');
        test.awaitText("有人用了。");
        verify(!test.control("保存").enabled);
        test.press("lin_1");
        test.check(200, '{"available":true,"twinHandle":"lin_1.twin"}');
        test.awaitText("可以用 · 你的分身会是 lin_1.twin");
        Bench.answer("/api/app/handle", 500, "");
        test.field("主页名").forceActiveFocus();
        keyClick(Qt.Key_Return);
        test.awaitText("没保存上，再试一次");
        Bench.answer("/api/app/handle", 200, '{"handle":"lin_1","note":"一年改一次。"}');
        test.press("保存");
        test.awaitText("主页名已设为 lin_1\n一年改一次。");
        compare(Bench.session.userHandle, "lin_1");
        compare(finishes.count, 0);
        test.press("继续");
        compare(finishes.count, 1);
    }

    function test_firstStepsCanBeSkippedAndReadByKeyboard() {
        const view = createTemporaryObject(onboarding, test);
        finishes.target = view;
        finishes.clear();
        view.forceActiveFocus();
        for (const heading of view.headings) {
            test.awaitText(heading);
            keyClick(Qt.Key_Return);
        }
        compare(finishes.count, 1);
        view.step = 0;
        test.press("跳过");
        compare(finishes.count, 2);
    }

    function test_signingOutSaysWhatTheKeychainDidNotDo() {
        Bench.restart();
        Bench.signIn('{"id":"u1","username":"小林","handle":"lin","dialCode":"+86","phone":"13800138000"}');
        tryVerify(() => Bench.keychainItem() === "t");
        const settings = createTemporaryObject(section, test);
        for (const text of ["小林", "+86 13800138000", "u1", "lin"])
            test.awaitText(text);
        // The handle can be changed from here.
        Bench.answer("/api/app/handle/suggest", 200, '{"suggestions":["lin_9"]}');
        Bench.answer("/api/app/handle", 200, '{"handle":"lin_9"}');
        test.press("换一个");
        tryVerify(() => test.hasKeyboard(test.field("主页名")));
        tryVerify(() => test.control("lin_9") !== null);
        test.press("lin_9");
        test.check(200, '{"available":true}');
        test.awaitText("可以用");
        test.press("保存");
        test.awaitText("主页名已设为 lin_9");
        keyClick(Qt.Key_Escape);
        tryVerify(() => !test.shows("主页名已设为 lin_9"));
        test.awaitText("lin_9");

        Bench.keychainFails(true);
        test.press("退出登录");
        test.awaitText("退出登录？");
        verify(test.control("取消").activeFocus, "not at what cannot be taken back");
        test.press("退出登录");
        tryCompare(Bench.session, "phase", SessionModel.SignedOut);
        settings.destroy();
        createTemporaryObject(signedOut, test);
        test.awaitText("已经退出登录，但钥匙串里的登录信息没能删掉，请在系统的钥匙串里手动删除。");
    }

    function test_aHandleThatIsBeingSavedIsHeardOfThoughTheSheetIsClosed() {
        Bench.restart();
        Bench.signIn('{"id":"u1"}');
        createTemporaryObject(section, test);
        test.awaitText("还没有");
        test.press("取一个");
        tryVerify(() => test.hasKeyboard(test.field("主页名")));
        test.type("主页名", "lin");
        test.check(200, '{"available":true}');
        test.awaitText("可以用");
        Bench.hold("/api/app/handle");
        test.press("保存");
        tryVerify(() => Bench.session.handle.saving);
        keyClick(Qt.Key_Escape);
        // Nothing is lost, so nothing is asked.
        tryVerify(() => test.field("主页名") === null);
        verify(!test.shows("放弃已填写的内容？"));
        Bench.release(200, '{"handle":"lin"}');
        test.awaitText("lin");
        compare(Bench.session.userHandle, "lin");
        test.press("换一个");
        tryVerify(() => test.hasKeyboard(test.field("主页名")));
        compare(Bench.session.handle.input, "", "the next time begins anew");

        // One that is refused by then is told of, and waits with its reason.
        test.type("主页名", "lan");
        test.check(200, '{"available":true}');
        test.awaitText("可以用");
        Bench.hold("/api/app/handle");
        test.press("保存");
        tryVerify(() => Bench.session.handle.saving);
        keyClick(Qt.Key_Escape);
        tryVerify(() => test.field("主页名") === null);
        Bench.release(409, '{"message":"刚被别人取走了"}');
        tryVerify(() => Bench.session.notice.startsWith("主页名没有存下："));
        test.press("换一个");
        tryVerify(() => test.hasKeyboard(test.field("主页名")));
        compare(Bench.session.handle.input, "lan");
        verify(test.shows(Bench.session.handle.errorText));
        compare(Bench.session.notice, "", "it is seen now");

        // Another window's sheet takes nothing away from this one.
        Bench.session.handle.open();
        Bench.session.handle.close();
        compare(Bench.session.handle.input, "lan");

        // Nobody reads what comes while the sheet fades.
        Theme.reducedMotion = false;
        Bench.hold("/api/app/handle");
        const asked = Bench.count("/api/app/handle");
        Bench.session.handle.save();
        tryVerify(() => Bench.count("/api/app/handle") > asked);
        keyClick(Qt.Key_Escape);
        Bench.release(409, '{"message":"刚被别人取走了"}');
        tryVerify(() => !Bench.session.handle.saving);
        Theme.reducedMotion = true;
        tryVerify(() => Bench.session.notice.startsWith("主页名没有存下："));
    }

    function test_firstStepsEndAtTheFirst() {
        const view = createTemporaryObject(onboarding, test);
        view.step = 1;
        const back = test.control("上一步");
        test.use(back);
        tryVerify(() => !test.hasKeyboard(back), 5000, "the keyboard leaves what is hidden");
        verify(test.hasKeyboard(test.control("下一步")));
        compare(view.step, 0);
        // Whatever reaches it before.
        back.forceActiveFocus();
        keyClick(Qt.Key_Return);
        back.forceActiveFocus();
        keyClick(Qt.Key_Space);
        verify(view.step >= 0);
    }

    name: "Account"

    SignalSpy {
        id: finishes

        signalName: "finished"
    }

    Component {
        id: launch

        LaunchView {
            anchors.fill: parent
            quietFor: 1000000
            resources: Bench.resources
            session: Bench.session
        }
    }

    Component {
        id: handleSetup

        HandleSetupView {
            id: view

            anchors.fill: parent
            resources: Bench.resources
            session: Bench.session
            Component.onCompleted: finishes.target = view
        }
    }

    Component {
        id: onboarding

        OnboardingView {
            anchors.fill: parent
            resources: Bench.resources
        }
    }

    Component {
        id: signedOut

        SignedOutView {
            anchors.fill: parent
            resources: Bench.resources
            session: Bench.session
        }
    }

    Component {
        id: section

        AccountSection {
            session: Bench.session
            width: 600
        }
    }
}
