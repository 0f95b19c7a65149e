#pragma once

#include "screens/chat/ChatModel.h"

#include "support/Await.h"
#include "support/FileThreadEnd.h"
#include "support/ManualClock.h"
#include "support/StubServer.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace lmp {

/// A window's chat over a scripted service. Saving works unless a test says otherwise; conversations "a", "b" and "c"
/// are there, each with one message of the person's.
class ChatModelFixture : public ::testing::Test {
protected:
    static constexpr const char *stream = "/api/relay/chat/stream";
    static constexpr const char *sync = "/api/app/conversation/sync";

    ChatModelFixture() {
        server.on(sync, StubServer::reply(200, R"({"ok":true,"revision":2})"));
        for (const QByteArray id : {"a", "b", "c"})
            server.on("/api/app/conversation?id=" + id, StubServer::reply(200, conversation(id, message(id + "1"))));
        answer({delta("好"), done});
        open();
    }

    /// A request that is still open when the test ends would take its task with it.
    void TearDown() override {
        if (chat) {
            chat->stop();
            EXPECT_TRUE(eventually([this] { return !chat->retrying(); }));
            chat.reset();
        }
        settle();
        await(ConversationService(api).list());
        settle();
    }

    /// Another window, or the same one after a restart.
    void open() {
        chat = std::make_unique<ChatModel>(services());
        tester = std::make_unique<QAbstractItemModelTester>(chat->messages(),
                                                            QAbstractItemModelTester::FailureReportingMode::Fatal);
        settleFiles();
    }
    ChatServices services() {
        return {.api = api,
                .events = SSEClient(api.base, api.tokenProvider),
                .account = {[this] { return user; },
                            [this] {
                                return signIn;
                            }},
                .drafts = ConversationDraftCache(support),
                .inputs = ConversationInputDraftStore(support),
                .clock = &clock,
                .safety = &safety,
                .recorder = {},
                .opener = &opener};
    }
    /// Waits until what the window reads and writes on disk is done.
    void settleFiles() {
        EXPECT_TRUE(eventually([this] { return await(chat->preserve()); }));
        settle();
    }
    void load(const QString &id) {
        chat->load(id);
        EXPECT_TRUE(eventually([this] { return !chat->loading(); }));
    }
    void become(const std::optional<QString> &who) {
        user = who;
        signIn += u'+';
        chat->recheckAccount();
        settleFiles();
    }
    /// Sends and waits for the end of the turn and of its save.
    void turn(const QString &text) {
        QSignalSpy saved(chat.get(), &ChatModel::saved);
        QSignalSpy kept(chat.get(), &ChatModel::draftsChanged);
        chat->setInput(text);
        ASSERT_TRUE(chat->send());
        EXPECT_TRUE(eventually([&] { return !chat->sending() && (saved.size() > 0 || kept.size() > 0); }));
        settle();
    }

    // What the service does.
    void answer(std::initializer_list<QByteArray> data) { server.on(stream, StubServer::events(frames(data))); }
    /// A stream that says nothing until `say`.
    void holdStream() {
        server.on(stream, [this](const auto &, QTcpSocket &socket) {
            held = &socket;
            socket.write("HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nConnection: close\r\n\r\n");
        });
    }
    void say(std::initializer_list<QByteArray> data) {
        ASSERT_TRUE(eventually([this] { return held; }));
        held->write(frames(data));
        held->flush();
    }
    static QByteArray delta(const QByteArray &text) { return R"({"delta":")" + text + "\"}"; }
    static inline const QByteArray done = R"({"done":true,"pipCharged":3,"balance":97,"requestId":"r1"})";
    static QByteArray frames(std::initializer_list<QByteArray> data) {
        QByteArray bytes;
        for (const QByteArray &one : data)
            bytes += "data: " + one + "\n\n";
        return bytes;
    }
    static QByteArray message(const QByteArray &id, const char *state = "submitted") {
        return R"({"id":")" + id + R"(","role":"user","text":")" + id + R"(","deliveryState":")" + state + "\"}";
    }
    static QByteArray reply(const QByteArray &id, const QByteArray &to) {
        return R"({"id":")" + id + R"(","role":"twin","text":")" + id + R"(","replyToUserMessageId":")" + to + "\"}";
    }
    static QByteArray conversation(const QByteArray &id, const QByteArray &messages) {
        return R"({"conversation":{"id":")" + id + R"(","title":"t)" + id + R"(","revision":1,"messages":[)" +
               messages + "]}}";
    }

    // What is shown.
    QVariant shown(int row, const char *role) const {
        const auto *model = chat->messages();
        return model->data(model->index(row < 0 ? model->rowCount() + row : row), model->roleNames().key(role));
    }
    QString text(int row, const char *role = "text") const { return shown(row, role).toString(); }
    MessageListModel::State state(int row) const { return shown(row, "state").value<MessageListModel::State>(); }

    class Opener : public ExternalOpener {
    public:
        bool open(const QUrl &url) override {
            opened.push_back(url);
            return works;
        }
        QList<QUrl> opened;
        bool works = true;
    };

    StubServer server;
    QPointer<QTcpSocket> held;
    QTemporaryDir folder;
    FileThreadEnd files;
    ApplicationSupport support = ApplicationSupport::at(folder.path());
    ManualClock clock;
    SafetyGateStore safety;
    Opener opener;
    std::optional<QString> user = QStringLiteral("u1");
    QString signIn = QStringLiteral("s");
    APIClient api{server.url(QStringLiteral("/api")), [] {
                      return QStringLiteral("tok");
                  }};
    std::unique_ptr<ChatModel> chat;
    std::unique_ptr<QAbstractItemModelTester> tester;
};

} // namespace lmp
