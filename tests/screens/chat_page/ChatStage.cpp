#include "ChatStage.h"

#include "platform/SystemClock.h"

#include "support/Await.h"

#include <QClipboard>
#include <QGuiApplication>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {
constexpr auto streamRoute = "/api/relay/chat/stream";

QByteArray messageJson(int index) {
    const bool own = index % 2 == 0;
    // Of all heights, and so that each can be told from the others.
    QByteArray text = "第 " + QByteArray::number(index) + " 条。";
    for (int line = 0; line < index * 7 % 11; ++line)
        text += own ? " 说了一些话" : "\\n\\n这一段是回答里的内容，有长有短。";
    return R"({"id":"m)" + QByteArray::number(index) + R"(","role":")" + (own ? "user" : "twin") + R"(","text":")" +
           text + R"("})";
}
} // namespace

class ChatStage::Opener : public ExternalOpener {
public:
    bool open(const QUrl &url) override {
        links << url.toString();
        return true;
    }
    QStringList links;
};

ChatStage::ChatStage() = default;
ChatStage::~ChatStage() {
    finish();
}

QString ChatStage::clipboard() {
    return QGuiApplication::clipboard()->text();
}

QStringList ChatStage::openedLinks() const {
    return m_opener->links;
}

void ChatStage::finish() {
    if (!m_chat)
        return;
    // A request that is still open when the program ends would take its task with it.
    m_chat->stop();
    await(m_chat->preserve());
    m_conversations.reset();
    m_chat.reset();
    Q_EMIT restarted();
    await(ConversationService(APIClient(m_server->url(u"/api"_s), [] { return u"tok"_s; })).list());
    settle();
}

void ChatStage::restart() {
    finish();
    m_server = std::make_unique<StubServer>();
    m_folder = std::make_unique<QTemporaryDir>();
    m_opener = std::make_unique<Opener>();
    if (!m_clock)
        m_clock = std::make_unique<SystemClock>();
    answer(u"/app/conversation/sync"_s, 200, uR"({"ok":true,"revision":1})"_s);
    answer(u"/app/conversations"_s, 200, uR"({"conversations":[]})"_s);

    const APIClient api(m_server->url(u"/api"_s), [] { return u"tok"_s; });
    const auto support = ApplicationSupport::at(m_folder->path());
    const ChatServices services{
        .api = api,
        .events = SSEClient(api.base, api.tokenProvider),
        .account = ConversationAccount{[] { return u"u1"_s; },
                                       [] {
                                           return u"s1"_s;
                                       }},
        .drafts = ConversationDraftCache(support),
        .inputs = ConversationInputDraftStore(support),
        .clock = m_clock.get(),
        .safety = &m_safety,
        .recorder = [](const QString &, const QString &, const QString &, const QVariantMap &) {},
        .opener = m_opener.get(),
    };
    m_chat = std::make_unique<ChatModel>(services);
    m_conversations = std::make_unique<ConversationListModel>(services);
    m_saves = 0;
    connect(m_chat.get(), &ChatModel::saved, this, [this] {
        ++m_saves;
        Q_EMIT saved();
    });
    Q_EMIT restarted();
}

void ChatStage::answer(const QString &path, int status, const QString &body) {
    if (status == 0) {
        m_server->on("/api" + path.toUtf8(), [](const StubServer::Request &, QTcpSocket &socket) { socket.abort(); });
        return;
    }
    m_server->on("/api" + path.toUtf8(), StubServer::reply(status, body.toUtf8()));
}

void ChatStage::answerByStream() {
    m_server->on(streamRoute, [this](const StubServer::Request &, QTcpSocket &socket) {
        socket.write("HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nConnection: close\r\n\r\n");
        m_stream = &socket;
    });
}

void ChatStage::push(const QString &frame) {
    if (m_stream)
        m_stream->write("data: " + frame.toUtf8() + "\n\n");
}

void ChatStage::endStream(bool broken) {
    if (!m_stream)
        return;
    if (broken)
        m_stream->abort();
    else
        m_stream->disconnectFromHost();
}

int ChatStage::requests(const QString &path) const {
    return int(std::ranges::count(m_server->requests, "/api" + path.toUtf8(), &StubServer::Request::path));
}

void ChatStage::serveLong(const QString &id, int count) {
    QByteArray messages;
    for (int index = 0; index < count; ++index)
        messages += (index > 0 ? "," : "") + messageJson(index);
    serve(id, QString::fromUtf8(messages));
}

void ChatStage::serve(const QString &id, const QString &messages) {
    answer(u"/app/conversation?id="_s + id, 200,
           uR"({"conversation":{"id":"%1","title":"旧对话","revision":3,"messages":[%2]}})"_s.arg(id, messages));
}

} // namespace lmp
