#include "terminal/DevControl.h"

#include "core/Json.h"
#include "core/JsonRest.h"

#include <optional>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

enum class Decision { allowOnce, allowSession, deny };
BOOST_DESCRIBE_ENUM(Decision, allowOnce, allowSession, deny)

struct RespondLine {
    QString requestId = {};
    Decision decision = Decision::deny;
    std::optional<QString> reason = {};
};
BOOST_DESCRIBE_STRUCT(RespondLine, (), (requestId, decision, reason))

struct Line {
    std::optional<QString> send = {};
    std::optional<RespondLine> respond = {};
    std::optional<DevMode> setMode = {};
    std::optional<bool> interrupt = {};
    std::optional<bool> stop = {};
    JsonRest rest = {};
};
BOOST_DESCRIBE_STRUCT(Line, (), (send, respond, setMode, interrupt, stop, rest))

DevControl::Respond response(const RespondLine &line) {
    switch (line.decision) {
    case Decision::allowOnce:
        return {line.requestId, DevPermissionDecision::allowOnce()};
    case Decision::allowSession:
        return {line.requestId, DevPermissionDecision::allowSession()};
    case Decision::deny:
        break;
    }
    return {line.requestId, DevPermissionDecision::deny(line.reason)};
}

} // namespace

std::expected<DevControl, QString> DevControl::parse(QByteArrayView text) {
    const auto line = Json::decode<Line>(text);
    if (!line)
        return std::unexpected(u"这一行看不懂："_s + line.error().describe(u"命令"_s));
    const int commands = line->send.has_value() + line->respond.has_value() + line->setMode.has_value() +
                         line->interrupt.has_value() + line->stop.has_value();
    if (commands != 1 || line->rest.keys)
        return std::unexpected(u"一行要有且只有一个命令：send、respond、setMode、interrupt 或 stop"_s);
    if (line->send)
        return DevControl{Send{*line->send}};
    if (line->respond)
        return DevControl{response(*line->respond)};
    if (line->setMode)
        return DevControl{SetMode{*line->setMode}};
    if (!line->interrupt.value_or(true) || !line->stop.value_or(true))
        return std::unexpected(u"interrupt 和 stop 只能是 true"_s);
    return line->interrupt ? DevControl{Interrupt()} : DevControl{Stop()};
}

} // namespace lmp
