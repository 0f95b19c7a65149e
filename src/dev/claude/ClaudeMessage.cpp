#include "dev/claude/ClaudeMessage.h"

#include "core/Json.h"

#include <cmath>

namespace lmp {

using namespace claude_message;

namespace {

const boost::json::object noObject;
const boost::json::array noArray;

const boost::json::object &objectAt(const boost::json::object &from, std::string_view key) {
    const auto *value = from.if_contains(key);
    const auto *object = value ? value->if_object() : nullptr;
    return object ? *object : noObject;
}

const boost::json::array &arrayAt(const boost::json::object &from, std::string_view key) {
    const auto *value = from.if_contains(key);
    const auto *array = value ? value->if_array() : nullptr;
    return array ? *array : noArray;
}

std::string_view wordAt(const boost::json::object &from, std::string_view key) {
    const auto *value = from.if_contains(key);
    const auto *string = value ? value->if_string() : nullptr;
    return string ? std::string_view(*string) : std::string_view();
}

QString textAt(const boost::json::object &from, std::string_view key) {
    return detail::jsonText(wordAt(from, key));
}

std::optional<QString> filledTextAt(const boost::json::object &from, std::string_view key) {
    const auto word = wordAt(from, key);
    return word.empty() ? std::nullopt : std::optional(detail::jsonText(word));
}

bool truthAt(const boost::json::object &from, std::string_view key) {
    const auto *value = from.if_contains(key);
    const auto *truth = value ? value->if_bool() : nullptr;
    return truth && *truth;
}

std::optional<double> numberAt(const boost::json::object &from, std::string_view key) {
    const auto *value = from.if_contains(key);
    if (!value || !value->is_number())
        return std::nullopt;
    const auto number = value->to_number<double>();
    return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

/// A count or a time; beyond what a double holds exactly there are none.
std::optional<qint64> countAt(const boost::json::object &from, std::string_view key) {
    const auto number = numberAt(from, key);
    return number && std::abs(*number) < 9e15 ? std::optional(qint64(std::llround(*number))) : std::nullopt;
}

QString jsonOf(const boost::json::object &from, std::string_view key) {
    const auto *value = from.if_contains(key);
    return value ? QString::fromUtf8(Json::encode(*value)) : QStringLiteral("{}");
}

Init init(const boost::json::object &line) {
    return {.sessionId = filledTextAt(line, "session_id"),
            .model = filledTextAt(line, "model"),
            .version = filledTextAt(line, "claude_code_version")};
}

Said said(const boost::json::object &line) {
    const auto &message = objectAt(line, "message");
    Said said{.byTool = wordAt(message, "model") == "<synthetic>"};
    for (const auto &element : arrayAt(message, "content")) {
        const auto *block = element.if_object();
        if (!block)
            continue;
        if (wordAt(*block, "type") == "text")
            said.blocks.push_back(Text{textAt(*block, "text")});
        else if (wordAt(*block, "type") == "tool_use")
            said.blocks.push_back(
                ToolUse{.id = textAt(*block, "id"),
                        .input = jsonOf(*block, "input"),
                        .call = DevPermissionPolicy::Call::of(textAt(*block, "name"), objectAt(*block, "input"))});
    }
    return said;
}

/// What a tool came back with: a text, or blocks of which some are text.
QString outputOf(const boost::json::object &result) {
    QString output = textAt(result, "content");
    for (const auto &element : arrayAt(result, "content")) {
        if (const auto *block = element.if_object())
            output += textAt(*block, "text");
    }
    return output;
}

ToolResults toolResults(const boost::json::object &line) {
    ToolResults found;
    for (const auto &element : arrayAt(objectAt(line, "message"), "content")) {
        const auto *block = element.if_object();
        if (block && wordAt(*block, "type") == "tool_result")
            found.results.push_back({.id = textAt(*block, "tool_use_id"),
                                     .output = outputOf(*block),
                                     .isError = truthAt(*block, "is_error")});
    }
    return found;
}

/// What a turn's end says to people: its result, or errors that are not notes to the tool's makers.
QString wordsOf(const boost::json::object &line) {
    if (auto result = filledTextAt(line, "result"))
        return *std::move(result);
    QStringList errors;
    for (const auto &element : arrayAt(line, "errors")) {
        if (const auto *error = element.if_string(); error && !error->starts_with('['))
            errors.append(detail::jsonText(*error));
    }
    return errors.join(QLatin1Char('\n'));
}

TurnEnd turnEnd(const boost::json::object &line) {
    const auto &usage = objectAt(line, "usage");
    TurnEnd end{.isError = truthAt(line, "is_error"), .text = wordsOf(line)};
    end.usage.inputTokens = countAt(usage, "input_tokens");
    end.usage.outputTokens = countAt(usage, "output_tokens");
    end.usage.costUsd = numberAt(line, "total_cost_usd");
    end.usage.durationMs = countAt(line, "duration_ms");
    end.usage.model = filledTextAt(line, "model");
    return end;
}

void readRequest(const boost::json::object &line, ClaudeMessage &to) {
    const auto &request = objectAt(line, "request");
    if (wordAt(request, "subtype") == "can_use_tool")
        to.what =
            Question{.requestId = textAt(line, "request_id"),
                     .input = jsonOf(request, "input"),
                     .call = DevPermissionPolicy::Call::of(textAt(request, "tool_name"), objectAt(request, "input"))};
    else
        to.what = OtherRequest{textAt(line, "request_id")};
}

} // namespace

bool JsonCodec<ClaudeMessage>::read(const boost::json::value &from, ClaudeMessage &to) {
    const auto *line = from.if_object();
    if (!line)
        return true;
    const auto type = wordAt(*line, "type");
    if (type == "assistant")
        to.what = said(*line);
    else if (type == "user")
        to.what = toolResults(*line);
    else if (type == "result")
        to.what = turnEnd(*line);
    else if (type == "control_request")
        readRequest(*line, to);
    else if (type == "control_cancel_request")
        to.what = Withdrawal{textAt(*line, "request_id")};
    else if (type == "system" && wordAt(*line, "subtype") == "init")
        to.what = init(*line);
    return true;
}

std::optional<ClaudeMessage> ClaudeMessage::read(QByteArrayView line) {
    auto message = Json::decode<ClaudeMessage>(line);
    return message ? std::optional(*std::move(message)) : std::nullopt;
}

} // namespace lmp
