#include "app/LocalAccount.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

const QString number = u"13800000000"_s;
const QString dialCode = u"+86"_s;

} // namespace

QCoro::Task<Result<AuthResponse>> LocalAccount::signIn(AuthService service) {
    const auto sent = co_await service.sendSms({.phone = number, .dialCode = dialCode});
    if (!sent)
        co_return std::unexpected(sent.error());
    if (sent->devCode.value_or(QString()).isEmpty())
        co_return std::unexpected(APIError::invalidResponse());
    co_return co_await service.smsLogin(
        {.phone = number, .code = *sent->devCode, .dialCode = dialCode, .inviteCode = {}});
}

} // namespace lmp
