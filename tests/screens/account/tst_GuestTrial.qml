import QtQuick
import Lumenpair.Account
import Lumenpair.AccountBench

ScreenTest {
    id: test

    readonly property GuestModel guest: Bench.session.guest

    function say(text: string): void {
        const composer = test.inWindow(item => item.placeholderText === "说点什么" && item.submitted !== undefined);
        verify(composer && composer.enabled);
        composer.forceActiveFocus();
        for (const key of text)
            keyClick(key);
        keyClick(Qt.Key_Return);
    }

    function test_fromAClosedTrialToRegistration() {
        Bench.restart();
        Bench.answer("/api/app/guest/session", 500, "");
        const view = createTemporaryObject(screen, test);
        test.press("先试聊");
        test.awaitText("试聊暂时开不了，稍后再来。");
        Bench.answer("/api/app/guest/session", 200, '{"guest":{"token":"g","roundsLeft":2,"note":"说的话不会记住。"}}');
        test.press("重试");
        test.awaitText("还剩 2 轮");
        test.awaitText("说的话不会记住。");

        Bench.hold("/api/app/guest/chat");
        test.say("hi");
        test.awaitText("正在回复……");
        tryVerify(() => Bench.count("/api/app/guest/chat") === 1);
        compare(JSON.parse(Bench.sent("/api/app/guest/chat")), {guestToken: "g", message: "hi"});
        compare(test.guest.input, "");
        Bench.release(500, '{"reason":"没答上来。"}');
        test.awaitText("没答上来。");
        compare(test.guest.input, "hi", "a round that failed gives the text back");
        test.awaitText("还剩 2 轮");

        Bench.answer("/api/app/guest/chat", 200, '{"reply":"你好。","stardust":"✦","roundsLeft":1}');
        test.say("");
        test.awaitText("你好。");
        test.awaitText("✦");
        const readOut = () => test.inWindow(item => item.announce !== undefined && item.words === "你好。") !== null;
        verify(readOut(), "as it comes");
        compare(test.guest.input, "");

        // Going back and coming again keeps the trial.
        test.press("返回登录");
        tryVerify(() => test.hasKeyboard(test.field("手机号")));
        test.press("先试聊");
        test.awaitText("你好。");
        verify(!readOut(), "and not again");
        compare(Bench.count("/api/app/guest/session"), 2);

        Bench.answer("/api/app/guest/chat", 200, '{"reply":"再见。","roundsLeft":0}');
        test.say("bye");
        test.awaitText("试聊的轮数用完了。注册之后可以接着聊。");
        test.awaitText("再见。");
        // The box is gone, and takes no more words.
        tryVerify(() => test.hasKeyboard(test.control("注册")));
        keyClick("x");
        compare(test.guest.input, "");
        test.press("注册");
        tryVerify(() => test.hasKeyboard(test.field("手机号")));
        Bench.signIn('{"id":"u1"}');
        compare(test.guest.turns.rowCount(), 0, "a guest's words are not the account's");
        view.destroy();
    }

    name: "GuestTrial"

    Component {
        id: screen

        SignedOutView {
            anchors.fill: parent
            resources: Bench.resources
            session: Bench.session
        }
    }
}
