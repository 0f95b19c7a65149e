#include "core/APIError.h"

#include "core/APIErrorBody.h"
#include "core/Json.h"
#include "core/PlainLabel.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

APIError withoutStatus(const QString &reason) {
    APIError error;
    error.reason = reason;
    return error;
}

} // namespace

APIError APIError::unusableURL() {
    return withoutStatus(u"地址不合法"_s);
}

APIError APIError::invalidResponse() {
    return withoutStatus(u"无效响应"_s);
}

APIError APIError::timedOut(Session session) {
    return withoutStatus(session == Session::Slow ? u"栎想太久了，这次没跑完——再说一次试试。"_s
                                                  : u"等太久了，再试一次。"_s);
}

APIError APIError::network() {
    return withoutStatus(u"网络连接失败，请检查网络后重试"_s);
}

APIError APIError::fromAnswer(int status, const QByteArray &body, Currency currency) {
    const auto said = Json::decode<APIErrorBody>(body).value_or(APIErrorBody{});
    APIError error;
    error.status = status;
    error.reason = said.reason  ? PlainLabel::lines(*said.reason)
                   : said.error ? PlainLabel::lines(*said.error)
                                : u"请求失败（"_s + QString::number(status) + u"）"_s;
    error.code = said.error;
    if (currency == Currency::Keep) {
        error.pipNeeded = said.needed;
        error.pipBalance = said.balance;
    }
    error.body = body;
    return error;
}

APIError APIError::undecodable(int status, const QString &description) {
    APIError error;
    error.status = status;
    // The place in it is named by keys that the service chose.
    error.reason = PlainLabel::lines(description);
    return error;
}

} // namespace lmp
