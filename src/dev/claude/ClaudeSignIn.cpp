#include "dev/claude/ClaudeSignIn.h"

#include "core/Json.h"

#include <QDir>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

const QString addressId = u"lmp-1"_s;
const QString waitId = u"lmp-2"_s;

struct Call {
    QString subtype;
    std::optional<bool> loginWithClaudeAi;
};
BOOST_DESCRIBE_STRUCT(Call, (), (subtype, loginWithClaudeAi))

struct Request {
    QString type;
    QString request_id;
    Call request;
};
BOOST_DESCRIBE_STRUCT(Request, (), (type, request_id, request))

struct Addresses {
    std::optional<QString> automaticUrl;
    std::optional<QString> manualUrl;
};
BOOST_DESCRIBE_STRUCT(Addresses, (), (automaticUrl, manualUrl))

struct Answer {
    QString subtype;
    QString request_id;
    std::optional<Addresses> response;
    std::optional<QString> error;
};
BOOST_DESCRIBE_STRUCT(Answer, (), (subtype, request_id, response, error))

struct Response {
    QString type;
    Answer response;
};
BOOST_DESCRIBE_STRUCT(Response, (), (type, response))

QByteArray request(const QString &id, Call call) {
    return Json::encode(Request{u"control_request"_s, id, std::move(call)});
}

/// The one that comes back by itself before the one that ends in a code to be copied.
std::optional<QString> addressIn(const Answer &answer) {
    if (answer.response) {
        for (const auto &url : {answer.response->automaticUrl, answer.response->manualUrl}) {
            if (url && DevSignIn::isWebAddress(*url))
                return url;
        }
    }
    return std::nullopt;
}

} // namespace

DevProcess::Command ClaudeSignIn::command() const {
    return {.program = u"claude"_s,
            .arguments = {u"--print"_s, u"--input-format"_s, u"stream-json"_s, u"--output-format"_s, u"stream-json"_s,
                          u"--verbose"_s},
            .directory = QDir::homePath(),
            .extra = {{u"CLAUDE_CODE_ENTRYPOINT"_s, u"sdk-ts"_s}}};
}

QByteArrayList ClaudeSignIn::opening() {
    return {request(addressId, {.subtype = u"claude_authenticate"_s, .loginWithClaudeAi = true})};
}

DevSignIn::Step ClaudeSignIn::read(QByteArrayView line) {
    const auto read = Json::decode<Response>(line);
    if (!read || read->type != "control_response"_L1)
        return {};
    const Answer &answer = read->response;
    if (answer.request_id == addressId) {
        auto url = addressIn(answer);
        if (!url)
            return {.failure = u"CLI 没有给出授权链接"_s};
        return {.write = {request(waitId, {.subtype = u"claude_oauth_wait_for_completion"_s, .loginWithClaudeAi = {}})},
                .url = std::move(url)};
    }
    if (answer.request_id != waitId)
        return {};
    if (answer.subtype == "success"_L1)
        return {.done = true};
    return {.failure = u"登录没有完成"_s + (answer.error ? u"："_s + *answer.error : QString())};
}

QString ClaudeSignIn::lateText() const {
    return u"等太久了（%1 秒）——登录没走完"_s.arg(limit().count());
}

QString ClaudeSignIn::deadText() const {
    return u"claude 进程退出了"_s;
}

} // namespace lmp
