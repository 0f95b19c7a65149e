#include "support/PseudoTerminal.h"
#include "support/StubServer.h"
#include "terminal/TerminalFixture.h"

#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>

#include <csignal>

namespace lmp {

using namespace Qt::StringLiterals;

class TerminalTest : public TerminalFixture {};

TEST_F(TerminalTest, AsksOnceAndPrintsTheReplyAlone) {
    const auto piped = run({}, "你好\n");
    EXPECT_EQ(piped.code, 0) << piped.err.toStdString();
    EXPECT_FALSE(piped.out.trimmed().isEmpty());
    EXPECT_TRUE(piped.err.contains(u"余额"_s));
    EXPECT_EQ(lastState(), "submitted");
    EXPECT_EQ(charges(), 1u);

    EXPECT_EQ(run({u"chat"_s}, "  \n").code, 2);
    EXPECT_EQ(run({u"chat"_s}, "\xff\xfe\n").code, 0);
    EXPECT_EQ(run({u"chat"_s}, QByteArray(5'000'000, 'a')).code, 2);
}

TEST_F(TerminalTest, EventsOfATurn) {
    const auto first = run({u"chat"_s, u"--jsonl"_s, u"我叫小林"_s});
    ASSERT_EQ(first.code, 0) << first.err.toStdString();
    EXPECT_EQ(first.types(), (QStringList{u"turn.started"_s, u"delta"_s, u"turn.completed"_s}));
    const auto events = first.events();
    QString text;
    for (const auto &event : events) {
        if (event.at("type") == "delta")
            text += QString::fromStdString(std::string(event.at("text").as_string()));
    }
    const auto &done = events.back();
    EXPECT_EQ(QString::fromStdString(std::string(done.at("text").as_string())), text);
    EXPECT_EQ(done.at("state"), "submitted");
    EXPECT_EQ(done.at("charged"), 3);
    EXPECT_EQ(done.at("balance"), 997);
    EXPECT_TRUE(done.at("requestId").is_string());
    EXPECT_FALSE(done.as_object().contains("notice"));

    const auto again = run({u"chat"_s, u"-c"_s, u"--jsonl"_s, u"--cheaper"_s, u"你记得我叫什么吗"_s});
    EXPECT_EQ(again.code, 0) << again.err.toStdString() << again.out.toStdString();
    EXPECT_TRUE(again.types().contains(u"memories"_s));
    EXPECT_EQ(again.events().front().at("conversationId"), events.front().at("conversationId"));
    EXPECT_EQ(again.events().back().at("charged"), 1);

    const auto crisis = run({u"chat"_s, u"--incognito"_s, u"--jsonl"_s, u"我不想活了"_s});
    EXPECT_TRUE(crisis.types().contains(u"safety"_s));
    EXPECT_EQ(look(u"/api/app/conversations"_s, m_token).at("conversations").as_array().size(), 1u);
}

TEST_F(TerminalTest, EveryOutcomeHasItsCodeAndItsSentence) {
    struct Case {
        QByteArray fault;
        int code;
        QString sentence;
        std::string state;
        std::size_t charged;
    };
    const auto stream = [](const QByteArray &rest) {
        return R"({"route":"/relay/chat/stream","times":1,)" + rest + "}";
    };
    std::size_t charged = 0;
    for (const auto &one : std::initializer_list<Case>{
             {stream(R"("status":402,"body":{"error":"insufficient_pip"})"), 1,
              u"本次结果与结算尚未确认。输入已保留在对话中，请先查看账单。"_s, "failed", 0},
             {stream(R"("status":503,"body":{"error":"relay_unconfigured"})"), 1,
              u"对话服务暂时未接通。你的输入已保留，可以稍后重试。"_s, "failed", 0},
             {stream(R"("status":500)"), 4, u"连接中断，已收到的内容保留。尚未确认本次结算，请先查看账单。"_s,
              "unknown", 0},
             {stream(R"("cutAfterEvents":2)"), 4, u"连接中断，已收到的内容保留。尚未确认本次结算，请先查看账单。"_s,
              "unknown", 0},
             {stream(R"("noDone":true)"), 4, u"连接已结束，尚未确认本次结果与结算。已收到的内容保留，请先查看账单。"_s,
              "unknown", 0},
             {stream(R"("abort":true)"), 4, u"连接已结束，尚未确认本次结果与结算。已收到的内容保留，请先查看账单。"_s,
              "unknown", 0},
             {stream(R"("empty":true)"), 0,
              u"这一轮没吐出内容。钱已经按这一轮算过了，所以不自动重试（重试会再扣一次）——换个说法再问一次。"_s,
              "submitted", 1},
             {stream(R"("garbage":true)"), 4, u"连接已结束，尚未确认本次结果与结算。已收到的内容保留，请先查看账单。"_s,
              "unknown", 0},
             {stream(R"("chunkBytes":1)"), 0, {}, "submitted", 1},
             {stream(R"("status":404)"), 0, {}, "submitted", 1},
             {R"({"route":"/relay/chat*","times":2,"status":404})", 4,
              u"连接中断，结果与结算尚未确认。输入已保留在对话中，请先查看账单。"_s, "unknown", 0},
         }) {
        fault(one.fault);
        const auto plain = run({u"chat"_s, u"说点什么"_s});
        EXPECT_EQ(plain.code, one.code) << one.fault.constData() << plain.err.toStdString();
        EXPECT_TRUE(plain.err.contains(one.sentence)) << one.fault.constData() << plain.err.toStdString();
        EXPECT_EQ(lastState(), one.state) << one.fault.constData();
        charged += one.charged;
        EXPECT_EQ(charges(), charged) << one.fault.constData();
    }
}

TEST_F(TerminalTest, CtrlCStopsTheReplyAndKeepsIt) {
    QProcess program;
    ASSERT_TRUE(sayAndStall(program, u"慢慢说"_s).contains("\"delta\""));
    ::kill(pid_t(program.processId()), SIGINT);
    const auto stopped = finish(program);
    EXPECT_EQ(stopped.code, 130);
    const auto last = stopped.events().back();
    EXPECT_EQ(last.at("type"), "turn.failed");
    EXPECT_EQ(last.at("state"), "unknown");
    EXPECT_EQ(last.at("reason"), "正在停止等待；已确认的结果会保留");
    EXPECT_EQ(lastState(), "unknown");
    EXPECT_EQ(charges(), 0u);
}

TEST_F(TerminalTest, WhoIsThere) {
    EXPECT_TRUE(run({u"whoami"_s}).out.contains(u"13900000001"_s));
    EXPECT_EQ(run({u"whoami"_s}, {}, u""_s).code, 3);
    EXPECT_EQ(run({u"whoami"_s}, {}, u"wrong"_s).code, 3);
    EXPECT_EQ(run({u"chat"_s, u"你好"_s}, {}, u"wrong"_s).code, 3);
    // A token that ran out since: whatever is asked for first.
    for (const QStringList &arguments : {QStringList{u"conversations"_s, u"list"_s}, {u"chat"_s, u"-c"_s, u"你好"_s}}) {
        fault(R"({"route":"/app/conversations","times":1,"status":401})");
        EXPECT_EQ(run(arguments).code, 3) << arguments.join(u' ').toStdString();
    }
    // A token that cannot be verified is used all the same; the turn tells.
    fault(R"({"route":"/app/auth/me","times":-1,"status":500})");
    EXPECT_EQ(run({u"chat"_s, u"你好"_s}).code, 0);
}

TEST_F(TerminalTest, SignInLeavesNothingInClear) {
    const auto in = run({u"sign-in"_s, u"--phone"_s, u"139-0000 0002"_s}, "\n", u""_s);
    EXPECT_EQ(in.code, 0) << in.err.toStdString();
    EXPECT_TRUE(in.err.contains(u"开发环境已自动填入验证码"_s));
    EXPECT_EQ(run({u"sign-in"_s, u"--phone"_s, u"1390000000"_s}, "\n", u""_s).code, 2);
    // Nothing was sent, and whoever is signed in already is not the answer.
    const auto nobody = run({u"sign-in"_s, u"--phone"_s, u"abc"_s, u"--password"_s}, "secret\n");
    EXPECT_EQ(nobody.code, 2) << nobody.err.toStdString();
    const auto registered =
        run({u"sign-in"_s, u"--email"_s, u"a@b.example"_s, u"--register"_s}, "\nlong-Secret-77\n", u""_s);
    EXPECT_EQ(registered.code, 0) << registered.err.toStdString();
    const auto secret = run({u"sign-in"_s, u"--email"_s, u"a@b.example"_s}, "long-Secret-77\n", u""_s);
    EXPECT_EQ(secret.code, 0) << secret.err.toStdString();
    EXPECT_EQ(run({u"sign-in"_s, u"--email"_s, u"a@b.example"_s}, "wrong\n", u""_s).code, 1);
    expectNothingInClear();
}

TEST_F(TerminalTest, CrisisLeavesNoTrace) {
    const auto page = run({u"crisis"_s, u"cn"_s});
    EXPECT_EQ(page.code, 0);
    EXPECT_TRUE(page.out.contains(u"真人热线置顶 · 不用登录 · 不记录你来过"_s));
    EXPECT_TRUE(look(u"/sandbox/telemetry"_s).at("events").as_array().empty());
    EXPECT_FALSE(QDir(m_home.filePath(u"data"_s)).exists());

    QProcess dead;
    dead.setProcessEnvironment(environment());
    dead.start(QCoreApplication::applicationDirPath() + u"/lumenpair"_s,
               {u"--site"_s, u"http://127.0.0.1:1"_s, u"crisis"_s});
    const auto offline = finish(dead);
    EXPECT_EQ(offline.code, 1);
    EXPECT_TRUE(offline.out.contains(u"清单没读到（网络连接失败，请检查网络后重试）。"_s)) << offline.out.toStdString();
}

TEST_F(TerminalTest, UsageErrors) {
    for (const QStringList &arguments : {QStringList{u"chat"_s, u"-c"_s, u"--incognito"_s},
                                         {u"chat"_s, u"--conversation"_s, u"x"_s, u"--incognito"_s},
                                         {u"sign-in"_s},
                                         {u"sign-in"_s, u"--register"_s},
                                         {u"conversations"_s, u"show"_s},
                                         {u"conversations"_s},
                                         {u"--site"_s},
                                         {u"nonsense"_s},
                                         {u"search"_s, u" "_s},
                                         {u"search"_s, u"--most"_s, u"0"_s, u"x"_s},
                                         {u"--profile"_s, u"../x"_s, u"whoami"_s}}) {
        const auto refused = run(arguments);
        EXPECT_EQ(refused.code, 2) << arguments.join(u' ').toStdString();
        // The parser speaks English; the person is spoken to in Chinese.
        EXPECT_FALSE(refused.err.contains(QRegularExpression(u"required|expected|excludes|requires"_s)))
            << refused.err.toStdString();
    }
    const auto odd = run({u"chat"_s, u"--conversation"_s, u"a b"_s, u"你好"_s});
    EXPECT_EQ(odd.code, 1);
    EXPECT_TRUE(odd.err.contains(u"地址不合法"_s)) << odd.err.toStdString();
}

TEST_F(TerminalTest, AReaderWhoLeavesIsNoError) {
    QProcess shell;
    auto env = environment();
    env.insert(u"LMP_TOKEN"_s, m_token);
    shell.setProcessEnvironment(env);
    shell.start(u"/bin/sh"_s, {u"-c"_s, u"\"$0\" --site \"$1\" chat 你好 | true; echo"_s,
                               QCoreApplication::applicationDirPath() + u"/lumenpair"_s, m_site.toString()});
    EXPECT_EQ(finish(shell).code, 0);
    EXPECT_TRUE(eventually([&] { return charges() == 1; }));
    EXPECT_EQ(lastState(), "submitted");
}

TEST_F(TerminalTest, StartsWithoutStandardStreams) {
    // The next thing that is opened must not become one of them.
    const auto shell = [&](const QString &script) {
        QProcess program;
        auto env = environment();
        env.insert(u"LMP_TOKEN"_s, m_token);
        program.setProcessEnvironment(env);
        program.start(u"/bin/sh"_s, {u"-c"_s, script, QCoreApplication::applicationDirPath() + u"/lumenpair"_s,
                                     u"--site"_s, m_site.toString()});
        return finish(program);
    };
    EXPECT_EQ(shell(u"exec \"$0\" \"$@\" chat <&-"_s).code, 2);
    EXPECT_EQ(shell(u"exec \"$0\" \"$@\" chat 你好 <&- >&- 2>&-"_s).code, 0);
    EXPECT_EQ(lastState(), "submitted");
    EXPECT_EQ(charges(), 1u);
    if (QFile::exists(u"/dev/full"_s)) {
        const auto full = shell(u"exec \"$0\" \"$@\" chat 你好 >/dev/full"_s);
        EXPECT_EQ(full.code, 0);
        EXPECT_TRUE(full.err.contains(u"写不进标准输出"_s)) << full.err.toStdString();
    }
}

TEST_F(TerminalTest, ConversesOnATerminal) {
    PseudoTerminal terminal;
    ASSERT_TRUE(terminal.isOpen());
    QProcess program;
    terminal.attach(program);
    start(program, {u"chat"_s}, m_token);
    ASSERT_TRUE(terminal.shows(u"你："_s)) << terminal.shown().toStdString();
    terminal.type("你好\r");
    ASSERT_TRUE(terminal.shows(u"余额"_s)) << terminal.shown().toStdString();
    ASSERT_TRUE(terminal.shows(u"你："_s));
    terminal.type("\x03");
    ASSERT_TRUE(terminal.shows(u"再按一次 Ctrl-C 离开。"_s));
    ASSERT_TRUE(terminal.shows(u"你："_s));
    // The end of input leaves, also after an interruption.
    terminal.type("\x04");
    EXPECT_EQ(finish(program).code, 0);
    EXPECT_TRUE(terminal.echoes());
    EXPECT_EQ(lastState(), "submitted");
}

TEST_F(TerminalTest, SecretsAreNotShownAndTheEchoComesBack) {
    struct Case {
        QByteArray keys;
        int code;
    };
    for (const auto &[keys, code] :
         std::initializer_list<Case>{{"\x03", 130}, {"\x1c", 130}, {"\x04", 2}, {"wrong-Secret-77\r", 1}}) {
        PseudoTerminal terminal;
        ASSERT_TRUE(terminal.isOpen());
        QProcess program;
        terminal.attach(program);
        start(program, {u"sign-in"_s, u"--email"_s, u"nobody@b.example"_s}, {});
        ASSERT_TRUE(terminal.shows(u"密码："_s)) << terminal.shown().toStdString();
        ASSERT_TRUE(eventually([&] { return !terminal.echoes(); }));
        terminal.type(keys);
        EXPECT_EQ(finish(program).code, code) << terminal.shown().toStdString();
        EXPECT_TRUE(terminal.echoes());
        EXPECT_FALSE(terminal.shown().contains("Secret"));
    }
}

/// The program, the sandbox, and behind it an endpoint that speaks as the inference servers do.
class TerminalModelTest : public TerminalTest {
protected:
    QProcessEnvironment sandboxEnvironment() const override {
        auto env = TerminalTest::sandboxEnvironment();
        env.insert(u"LUMENPAIR_MODEL_URL"_s, m_model.url().toString());
        env.insert(u"LUMENPAIR_MODEL_KEY"_s, u"stub-key"_s);
        env.insert(u"LUMENPAIR_MODEL"_s, u"stub-model"_s);
        return env;
    }
    static QByteArray delta(const QByteArray &text) {
        return R"(data: {"choices":[{"index":0,"delta":{"content":")" + text + "\"}}]}\n\n";
    }

    StubServer m_model;
};

TEST_F(TerminalModelTest, AModelStreamsToTheTerminal) {
    // Cut anywhere, also within a character.
    m_model.on("/v1/chat/completions", StubServer::events(delta("我在") + delta("听，😀") + "data: [DONE]\n\n", 5));
    const auto turn = run({u"chat"_s, u"--jsonl"_s, u"模型在吗"_s});
    ASSERT_EQ(turn.code, 0) << turn.err.toStdString();
    QString text;
    int deltas = 0;
    for (const auto &event : turn.events()) {
        if (event.at("type") != "delta")
            continue;
        text += QString::fromStdString(std::string(event.at("text").as_string()));
        ++deltas;
    }
    EXPECT_EQ(text, u"我在听，😀"_s);
    EXPECT_GE(deltas, 2);
    EXPECT_EQ(turn.events().back().at("state"), "submitted");
    ASSERT_EQ(m_model.requests.size(), 1u);
    EXPECT_EQ(m_model.requests[0].headers["authorization"], "Bearer stub-key");
    const auto asked = Json::decode<boost::json::value>(m_model.requests[0].body);
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->at("model"), "stub-model");
    EXPECT_EQ(asked->at("stream"), true);
    EXPECT_EQ(asked->at("messages").as_array().back().at("content"), "模型在吗");
    EXPECT_EQ(charges(), 1u);

    // An endpoint that fails after its first words has cost nothing, and what it said stays.
    m_model.on("/v1/chat/completions", StubServer::events(delta("半句") + "data: {\"error\":{}}\n\n"));
    const auto broken = run({u"chat"_s, u"再来"_s});
    EXPECT_EQ(broken.code, 4) << broken.err.toStdString();
    EXPECT_EQ(broken.out.trimmed(), u"半句"_s);
    EXPECT_EQ(lastState(), "unknown");
    EXPECT_EQ(charges(), 1u);
}

TEST_F(TerminalModelTest, AReplyCannotDriveTheTerminal) {
    m_model.on("/v1/chat/completions",
               StubServer::events(delta(R"(\u001b]0;title\u0007\u009b31m)") + delta("红") + "data: [DONE]\n\n"));
    for (const QStringList &arguments : {QStringList{u"chat"_s, u"说"_s}, {u"chat"_s, u"--jsonl"_s, u"说"_s}}) {
        PseudoTerminal terminal;
        ASSERT_TRUE(terminal.isOpen());
        QProcess program;
        terminal.attach(program);
        start(program, arguments, m_token);
        EXPECT_EQ(finish(program).code, 0);
        const QByteArray shown = terminal.shown();
        EXPECT_TRUE(shown.contains("红")) << shown.toStdString();
        EXPECT_FALSE(shown.contains("\x1b]")) << shown.toStdString();
        EXPECT_FALSE(shown.contains("\xc2\x9b")) << shown.toStdString();
    }
}

/// A session bus with a keyring of the test's own, for every program started through it.
TEST_F(TerminalTest, TheKeyringKeepsTheTokenForTheNextStart) {
    const QString bus = QStandardPaths::findExecutable(u"dbus-run-session"_s);
    const QString keyring = QStandardPaths::findExecutable(u"gnome-keyring-daemon"_s);
    if (bus.isEmpty() || keyring.isEmpty())
        GTEST_SKIP() << "no dbus-run-session or no gnome-keyring-daemon";
    QProcess session;
    session.setProcessEnvironment(environment());
    session.start(bus, {u"--"_s, u"/bin/sh"_s, u"-c"_s,
                        u"printf secret | gnome-keyring-daemon --unlock --components=secrets >/dev/null 2>&1\n"
                        "echo | \"$0\" \"$@\" sign-in --phone 13900000003 && \"$0\" \"$@\" whoami && "
                        "\"$0\" \"$@\" sign-out && ! \"$0\" \"$@\" whoami"_s,
                        QCoreApplication::applicationDirPath() + u"/lumenpair"_s, u"--site"_s, m_site.toString()});
    session.closeWriteChannel();
    const auto ended = finish(session);
    EXPECT_EQ(ended.code, 0) << ended.err.toStdString();
    EXPECT_TRUE(ended.out.contains(u"13900000003"_s)) << ended.err.toStdString();
    expectNothingInClear();
}

} // namespace lmp
