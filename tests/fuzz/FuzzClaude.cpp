#include "FuzzTarget.h"

#include "core/Json.h"
#include "dev/claude/ClaudeConversation.h"

#include <QSet>

#include <cstdlib>

namespace lmp {

namespace {

void require(bool promise) {
    if (!promise)
        std::abort();
}

/// A line that the tool cannot parse would end it.
void checkLines(ClaudeConversation &conversation) {
    for (const auto &line : conversation.takeLines())
        require(!line.contains('\n') && Json::decode<boost::json::value>(line).has_value());
}

/// @param open the calls without a result so far
void checkEvents(ClaudeConversation &conversation, QSet<QString> &open) {
    for (const auto &event : conversation.takeEvents()) {
        if (const auto *call = std::get_if<dev_event::ToolCall>(&event))
            open.insert(call->id);
        else if (const auto *result = std::get_if<dev_event::ToolResult>(&event))
            open.remove(result->id);
        else if (const auto *asked = std::get_if<DevPermissionRequest>(&event))
            conversation.respond(asked->id, asked->input.size() % 2 ? DevPermissionDecision::allowSession()
                                                                    : DevPermissionDecision::deny(asked->input));
    }
}

} // namespace

/// Whatever Claude Code writes, what we write is JSON, and no call stays open.
///
/// The input is its lines; one that begins with an exclamation mark is something that the user does.
void fuzzClaude(QByteArrayView input) {
    ClaudeConversation conversation(QStringLiteral("/nowhere"));
    QSet<QString> open;
    for (const QByteArray &line : input.toByteArray().split('\n')) {
        if (line.startsWith("!i"))
            conversation.interrupt();
        else if (line.startsWith("!m"))
            conversation.setMode(DevMode(line.size() % 3));
        else if (line.startsWith('!'))
            conversation.send(QString::fromUtf8(line));
        else
            conversation.take(line);
        checkEvents(conversation, open);
        checkLines(conversation);
    }
    conversation.end(QStringLiteral("over"));
    checkEvents(conversation, open);
    require(open.isEmpty());
}

} // namespace lmp
