#include "SandboxFailure.h"

namespace lmp::sandbox {

SandboxFailure SandboxFailure::unauthorized() {
    return {401, "unauthorized", "登录已失效，请重新登录。"};
}

SandboxFailure SandboxFailure::notFound(std::string reason) {
    return {404, "not_found", std::move(reason)};
}

SandboxFailure SandboxFailure::badField(const std::string &field, const std::string &expected) {
    return {400, "bad_field", "字段「" + field + "」不对：应为" + expected + "。"};
}

SandboxFailure SandboxFailure::insufficientPip(std::int64_t needed, std::int64_t balance) {
    SandboxFailure failure(402, "insufficient_pip",
                           "余额不足：这一轮需要 " + std::to_string(needed) + " Pip，现有 " + std::to_string(balance) +
                               " Pip。");
    failure.needed = needed;
    failure.balance = balance;
    return failure;
}

} // namespace lmp::sandbox
