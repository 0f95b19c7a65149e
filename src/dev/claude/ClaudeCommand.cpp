#include "dev/claude/ClaudeCommand.h"

#include "core/Json.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

struct Message {
    QString role = u"user"_s;
    QString content = {};
};
BOOST_DESCRIBE_STRUCT(Message, (), (role, content))

struct Turn {
    QString type = u"user"_s;
    Message message = {};
};
BOOST_DESCRIBE_STRUCT(Turn, (), (type, message))

struct Answer {
    QString behavior = {};
    std::optional<QString> message = {};
    std::optional<bool> interrupt = {};
    std::optional<boost::json::value> updatedInput = {};
};
BOOST_DESCRIBE_STRUCT(Answer, (), (behavior, message, interrupt, updatedInput))

struct Response {
    QString subtype = u"success"_s;
    QString request_id = {};
    std::optional<Answer> response = {};
    std::optional<QString> error = {};
};
BOOST_DESCRIBE_STRUCT(Response, (), (subtype, request_id, response, error))

struct ControlResponse {
    QString type = u"control_response"_s;
    Response response = {};
};
BOOST_DESCRIBE_STRUCT(ControlResponse, (), (type, response))

struct Request {
    QString subtype = {};
};
BOOST_DESCRIBE_STRUCT(Request, (), (subtype))

struct ControlRequest {
    QString type = u"control_request"_s;
    QString request_id = {};
    Request request = {};
};
BOOST_DESCRIBE_STRUCT(ControlRequest, (), (type, request_id, request))

QByteArray success(const QString &requestId, Answer answer) {
    return Json::encode(
        ControlResponse{.response = {.request_id = requestId, .response = std::optional(std::move(answer))}});
}

} // namespace

QByteArray ClaudeCommand::turn(const QString &text) {
    return Json::encode(Turn{.message = {.content = text}});
}

QByteArray ClaudeCommand::allow(const QString &requestId, const std::optional<QString> &updatedInput) {
    Answer answer{.behavior = u"allow"_s};
    if (updatedInput) {
        if (auto input = Json::decode<boost::json::value>(updatedInput->toUtf8()))
            answer.updatedInput = *std::move(input);
    }
    return success(requestId, std::move(answer));
}

QByteArray ClaudeCommand::deny(const QString &requestId, const QString &message, bool interrupt) {
    return success(requestId, {.behavior = u"deny"_s, .message = message, .interrupt = interrupt});
}

QByteArray ClaudeCommand::unsupported(const QString &requestId) {
    return Json::encode(ControlResponse{.response = {.subtype = u"error"_s,
                                                     .request_id = requestId,
                                                     .error = u"unsupported by Lumenpair workbench"_s}});
}

QByteArray ClaudeCommand::interrupt(const QString &requestId) {
    return Json::encode(ControlRequest{.request_id = requestId, .request = {.subtype = u"interrupt"_s}});
}

} // namespace lmp
