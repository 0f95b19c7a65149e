#include "core/AppleSignInCoordinator.h"

namespace lmp {

using namespace Qt::StringLiterals;

QCoro::Task<AppleSignInCoordinator::Outcome> AppleSignInCoordinator::signIn() {
    return [](QCoro::Task<Outcome> presented) -> QCoro::Task<Outcome> {
        Outcome outcome = co_await presented;
        if (outcome && outcome->identityToken.isEmpty())
            co_return std::unexpected(WebAuthFailure{WebAuthFailure::Kind::Provider, u"未取得 Apple 身份令牌"_s});
        co_return outcome;
    }(present());
}

QCoro::Task<AppleSignInCoordinator::Outcome> AppleSignInCoordinator::present() {
    co_return std::unexpected(WebAuthFailure{WebAuthFailure::Kind::Provider, u"这个系统上没有 Apple 登录。"_s});
}

} // namespace lmp
