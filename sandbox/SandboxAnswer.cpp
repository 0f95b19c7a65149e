#include "SandboxAnswer.h"

#include "SandboxFailure.h"

namespace lmp::sandbox {

SandboxAnswer SandboxAnswer::json(const boost::json::object &object, int status) {
    SandboxAnswer answer;
    answer.status = status;
    answer.body = boost::json::serialize(object);
    return answer;
}

SandboxAnswer SandboxAnswer::failure(const SandboxFailure &failure) {
    boost::json::object body{{"error", failure.code}, {"reason", failure.reason}};
    if (failure.needed)
        body["needed"] = *failure.needed;
    if (failure.balance)
        body["balance"] = *failure.balance;
    return json(body, failure.status);
}

SandboxAnswer SandboxAnswer::html(std::string page, int status) {
    SandboxAnswer answer;
    answer.status = status;
    answer.contentType = "text/html; charset=utf-8";
    answer.body = std::move(page);
    answer.headers.emplace_back("Content-Security-Policy",
                                "default-src 'none'; style-src 'unsafe-inline'; frame-ancestors 'none'");
    return answer;
}

SandboxAnswer SandboxAnswer::redirect(std::string location) {
    SandboxAnswer answer;
    answer.status = 302;
    answer.contentType = "text/plain; charset=utf-8";
    answer.headers.emplace_back("Location", std::move(location));
    return answer;
}

SandboxAnswer SandboxAnswer::events(std::shared_ptr<RelayStream> stream) {
    SandboxAnswer answer;
    answer.contentType = "text/event-stream";
    answer.stream = std::move(stream);
    return answer;
}

} // namespace lmp::sandbox
