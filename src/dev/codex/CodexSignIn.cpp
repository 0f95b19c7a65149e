#include "dev/codex/CodexSignIn.h"

#include "core/Json.h"

#include <QDir>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 initializeId = 1;
constexpr qint64 loginId = 2;

struct Client {
    QString name = u"lumenpair"_s;
    QString title = u"Lumenpair"_s;
    QString version = QStringLiteral(LMP_VERSION);
};
BOOST_DESCRIBE_STRUCT(Client, (), (name, title, version))

/// The parameters of all that is sent here.
struct Params {
    std::optional<Client> clientInfo = {};
    std::optional<QString> type = {};
};
BOOST_DESCRIBE_STRUCT(Params, (), (clientInfo, type))

struct Sent {
    std::optional<qint64> id = {};
    QString method;
    std::optional<Params> params = {};
};
BOOST_DESCRIBE_STRUCT(Sent, (), (id, method, params))

struct Login {
    std::optional<QString> loginId;
    std::optional<QString> authUrl;
};
BOOST_DESCRIBE_STRUCT(Login, (), (loginId, authUrl))

struct Completed {
    std::optional<QString> loginId;
    bool success = false;
    std::optional<QString> error;
};
BOOST_DESCRIBE_STRUCT(Completed, (), (loginId, success, error))

/// An answer to one of our requests; the server's own requests have ids of their own, and a method.
struct Reply {
    qint64 id = 0;
    std::optional<QString> method;
    std::optional<Login> result;
};
BOOST_DESCRIBE_STRUCT(Reply, (), (id, method, result))

struct Notice {
    QString method;
    Completed params;
};
BOOST_DESCRIBE_STRUCT(Notice, (), (method, params))

} // namespace

DevProcess::Command CodexSignIn::command() const {
    return {.program = u"codex"_s, .arguments = {u"app-server"_s}, .directory = QDir::homePath()};
}

QByteArrayList CodexSignIn::opening() {
    // The server takes one after the other, so there is nothing to wait for in between.
    return {
        Json::encode(Sent{.id = initializeId, .method = u"initialize"_s, .params = Params{.clientInfo = Client()}}),
        Json::encode(Sent{.method = u"initialized"_s}),
        Json::encode(Sent{.id = loginId, .method = u"account/login/start"_s, .params = Params{.type = u"chatgpt"_s}})};
}

DevSignIn::Step CodexSignIn::read(QByteArrayView line) {
    if (const auto reply = Json::decode<Reply>(line); reply && !reply->method) {
        if (reply->id != loginId)
            return {};
        if (!reply->result || !reply->result->authUrl || !isWebAddress(*reply->result->authUrl))
            return {.failure = u"codex 没有给出授权链接"_s};
        m_loginId = reply->result->loginId.value_or(QString());
        return {.url = reply->result->authUrl};
    }
    const auto notice = Json::decode<Notice>(line);
    if (!notice || notice->method != "account/login/completed"_L1)
        return {};
    const Completed &completed = notice->params;
    // That of an earlier attempt is nobody's any more.
    if (completed.loginId && !m_loginId.isEmpty() && *completed.loginId != m_loginId)
        return {};
    if (completed.success)
        return {.done = true};
    return {.failure = completed.error.value_or(u"登录没有完成"_s)};
}

QString CodexSignIn::lateText() const {
    return u"等太久了（5 分钟）——浏览器里没走完"_s;
}

QString CodexSignIn::deadText() const {
    return u"codex app-server 退出了"_s;
}

} // namespace lmp
