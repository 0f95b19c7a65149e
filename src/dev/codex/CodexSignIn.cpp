#include "dev/codex/CodexSignIn.h"

#include "dev/codex/CodexCalls.h"

#include <QDir>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 initializeId = 1;
constexpr qint64 loginId = 2;

struct StartLogin {
    QString type = u"chatgpt"_s;
};
BOOST_DESCRIBE_STRUCT(StartLogin, (), (type))

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
    const codex_call::Initialize client{.clientInfo = {.version = QStringLiteral(LMP_VERSION)}};
    return {json_rpc::request(initializeId, u"initialize"_s, client),
            json_rpc::notification(u"initialized"_s, json_rpc::Nothing()),
            json_rpc::request(loginId, u"account/login/start"_s, StartLogin())};
}

DevSignIn::Step CodexSignIn::read(QByteArrayView line) {
    const auto message = Json::decode<CodexMessage>(line);
    if (!message)
        return {};
    if (const auto *response = std::get_if<codex_message::Response>(&message->what)) {
        if (response->id.number() != loginId)
            return {};
        const auto login =
            response->result ? Json::fromValue<Login>(*response->result) : std::unexpected(JsonFailure());
        if (!login || !login->authUrl || !isWebAddress(*login->authUrl))
            return {.failure = u"codex 没有给出授权链接"_s};
        m_loginId = login->loginId.value_or(QString());
        return {.url = login->authUrl};
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
