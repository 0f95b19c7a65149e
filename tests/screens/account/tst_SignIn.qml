import QtQuick
import Lumenpair.Account
import Lumenpair.AccountBench

ScreenTest {
    id: test

    property SignedOutView view
    readonly property SignInModel model: Bench.session.signIn

    function open(providers: string): void {
        Bench.restart(providers);
        test.view = createTemporaryObject(screen, test);
        verify(test.view);
    }

    /// By the arrows, as the mouse would.
    function choose(way: string): void {
        const ways = ["手机验证码", "手机密码", "邮箱"];
        test.inWindow(item => item.label === "登录方式").forceActiveFocus();
        while (test.model.way !== ways.indexOf(way))
            keyClick(test.model.way < ways.indexOf(way) ? Qt.Key_Right : Qt.Key_Left);
    }

    function test_ways_data() {
        return [
            {
                tag: "sms",
                way: "手机验证码",
                fields: [["手机号", "13800138000"], ["验证码", "123456"]],
                path: "/api/app/auth/sms-login",
                body: {phone: "13800138000", code: "123456", dialCode: "+86"}
            },
            {
                tag: "password",
                way: "手机密码",
                fields: [["手机号", "138-0013 8000"], ["密码", "p w\"1"]],
                path: "/api/app/auth/login",
                body: {phone: "13800138000", password: "p w\"1"}
            },
            {
                tag: "e-mail",
                way: "邮箱",
                fields: [["邮箱", "a@b.c"], ["密码", "pw"]],
                path: "/api/app/auth/email-login",
                body: {email: "a@b.c", password: "pw"}
            },
            {
                tag: "registration",
                way: "邮箱",
                also: "注册新账号",
                fields: [["邮箱", "a@b.c"], ["验证码", "123456"], ["设一个密码", "pw"]],
                path: "/api/app/auth/email-register",
                body: {email: "a@b.c", password: "pw", code: "123456"}
            }
        ];
    }

    function test_ways(way) {
        test.open("");
        verify(test.hasKeyboard(test.field("手机号")), "the first field has the keyboard");
        test.choose(way.way);
        if (way.also)
            test.press(way.also);
        // Enter on nothing says what is missing, at its field, and sends nothing.
        test.field(way.fields[0][0]).forceActiveFocus();
        keyClick(Qt.Key_Return);
        test.awaitText("还没填" + way.fields[0][0]);
        compare(Bench.count("/api"), 0);
        for (const [label, text] of way.fields)
            test.type(label, text);
        verify(!test.shows("还没填" + way.fields[0][0]));

        Bench.answer(way.path, 400, '{"reason":"今天先到这里。"}');
        keyClick(Qt.Key_Return);
        test.awaitText("今天先到这里。");
        compare(JSON.parse(Bench.sent(way.path)), way.body);
        for (const [label, text] of way.fields)
            compare(test.field(label).text, text, "what was typed stays");

        Bench.answer(way.path, 200, '{"userInfo":{"id":"u1","username":"小林"},"token":"t1"}');
        keyClick(Qt.Key_Return);
        tryCompare(Bench.session, "phase", SessionModel.SignedIn);
        compare(Bench.session.userName, "小林");
        for (const secret of ["code", "password", "newPassword", "phone", "email"])
            compare(test.model[secret], "", secret + " is forgotten");
    }

    function test_aCodeIsSentFilledAndCounted() {
        test.open("");
        const height = test.field("手机号").height;
        test.press("发送验证码");
        test.awaitText("还没填手机号");
        verify(test.field("手机号").height > height);
        test.type("手机号", "1380013800");
        test.awaitText("手机号少了 1 位 · 中国大陆号码是 11 位");
        keyClick("0");
        verify(!test.shows("手机号少了 1 位 · 中国大陆号码是 11 位"));
        tryVerify(() => test.field("手机号").height === height, 5000, "no hole stays where a message was");

        Bench.answer("/api/app/auth/sms", 500, "");
        test.press("发送验证码");
        tryVerify(() => test.model.codeMessage !== "");
        test.awaitText(test.model.codeMessage);
        compare(test.model.message, "", "beside the code, not below the form");
        Bench.answer("/api/app/auth/sms", 200, '{"ok":true,"devCode":"482913"}');
        test.press("发送验证码");
        test.awaitText("开发环境已自动填入验证码\n验证码已发送，请查收");
        compare(test.field("验证码").text, "482913");
        verify(test.hasKeyboard(test.field("验证码")));
        verify(!test.control("60 秒后可重发").enabled);
        Bench.advance(1000);
        tryVerify(() => test.control("59 秒后可重发") !== null);

        test.model.code = "";
        test.field("验证码").forceActiveFocus();
        keyClick(Qt.Key_Return);
        test.awaitText("还没填验证码");
        // Another number got no code: nothing says so, and it need not wait.
        test.model.phone = "13800138001";
        tryVerify(() => !test.shows("验证码已发送，请查收"));
        verify(test.control("发送验证码").enabled);
    }

    function test_aCodeIsFoundInWhatWasPasted_data() {
        return [
            {tag: "wide", pasted: "４８２ ９１３", code: "482913"},
            {tag: "message", pasted: "【某某】验证码：482913，5分钟内有效。", code: "482913"},
            {tag: "blanks", pasted: " 482 913\n", code: "482913"},
            {tag: "letters", pasted: "A1B2C3", code: "A1B2C3"},
            {tag: "two numbers", pasted: "订单 20261121，验证码 482913", code: "订单 20261121，验证码 482913"},
            {tag: "none", pasted: "收到了吗？", code: "收到了吗？"}
        ];
    }

    function test_aCodeIsFoundInWhatWasPasted(row) {
        test.open("");
        test.model.code = row.pasted;
        compare(test.field("验证码").text, row.code);
    }

    function test_aResetPutsThePasswordIntoItsField() {
        test.open("");
        test.choose("邮箱");
        test.press("忘了密码");
        test.type("邮箱", "a@b.c");
        test.type("验证码", "123456");
        test.type("新密码", "new");
        Bench.answer("/api/app/auth/reset", 200, '{"ok":false}');
        keyClick(Qt.Key_Return);
        test.awaitText("重设失败，稍后再试");
        Bench.answer("/api/app/auth/reset", 200, '{"ok":true}');
        keyClick(Qt.Key_Return);
        test.awaitText("密码已重设，已填进密码框——点登录即可。");
        compare(test.field("密码").text, "new");
        compare(test.model.newPassword + test.model.code, "");
        // Another way is another kind of account: the password does not go along.
        test.choose("手机密码");
        compare(test.field("密码").text, "");
    }

    function test_everythingIsReachedByTab() {
        test.open("google apple");
        const wanted = ["手机号", "验证码", "发送验证码", "登录", "有邀请码", "用 Google 登录", "用 Apple 登录", "先试聊", "现在很难受？先看这个", "登录方式", "国家或地区"];
        const reached = new Set();
        for (let presses = 0; presses < 2 * wanted.length && reached.size < wanted.length; ++presses) {
            const name = test.Window.window.activeFocusItem.Accessible.name;
            for (const text of wanted) {
                if (name === text || name.startsWith(text + "：") || name.startsWith(text + "，"))
                    reached.add(text);
            }
            keyClick(Qt.Key_Tab);
        }
        compare(wanted.filter(text => !reached.has(text)), []);
    }

    function test_theWayToHelpNeedsNoScrolling() {
        test.open("google apple");
        test.choose("邮箱");
        test.press("注册新账号");
        const form = test.inWindow(item => item.submit !== undefined);
        tryVerify(() => form.mapToItem(test.view, 0, form.height).y > test.view.height - 100, 5000, "the form needs all the room");
        const entry = test.inWindow(item => item.title === "现在很难受？先看这个");
        verify(entry.mapToItem(test.view, 0, entry.height).y <= test.view.height);
    }

    function test_aPasswordIsShownOnlyWhenAsked() {
        test.open("");
        test.choose("手机密码");
        test.type("密码", "pw");
        const field = test.inWindow(item => item.echoMode !== undefined && item.text === "pw");
        compare(field.echoMode, TextInput.Password);
        test.press("显示输入的内容");
        compare(field.echoMode, TextInput.Normal);
    }

    function test_providersAreThereWhereTheDeploymentHasThem() {
        test.open("");
        compare(test.control("用 Google 登录"), null);
        compare(test.control("用 Apple 登录"), null);

        test.open("google");
        Bench.openerWorks(false);
        test.press("用 Google 登录");
        test.awaitText("正在浏览器里等你登录……");
        const link = test.field("请在这台电脑的浏览器里打开：").text;
        verify(link.startsWith("http") && link === Bench.opened[0], link);
        compare(test.field("请在这台电脑的浏览器里打开：").cursorPosition, 0);
        test.press("复制地址");
        test.awaitText("已复制");
        compare(Bench.clipboard(), link);
        test.press("取消");
        test.awaitText("没关系，换个方式或再试一次都行");
        tryVerify(() => test.hasKeyboard(test.control("用 Google 登录")));
    }

    function test_aNewAccountIsToldAfterwards() {
        test.open("apple");
        Bench.answer("/api/app/auth/apple", 200, '{"userInfo":{"id":"u2"},"token":"t2","type":"register"}');
        test.press("用 Apple 登录");
        tryCompare(Bench.session, "phase", SessionModel.SignedIn);
        test.view.destroy();
        verify(createTemporaryObject(notice, test));
        test.awaitText("登录新建了一个账号");
        test.press("关掉这条提示");
        tryVerify(() => !test.shows("登录新建了一个账号"));
    }

    name: "SignIn"

    Component {
        id: screen

        SignedOutView {
            anchors.fill: parent
            resources: Bench.resources
            session: Bench.session
        }
    }

    Component {
        id: notice

        NewAccountNotice {
            session: Bench.session
            width: 400
        }
    }
}
