#include "FuzzTarget.h"

#include "dev/codex/CodexQuestion.h"

#include <QSet>

#include <cstdlib>

namespace lmp {

namespace {

void require(bool promise) {
    if (!promise)
        std::abort();
}

/// Follows the calls of tools: each has one result.
class Calls {
public:
    void take(const CodexItems::Events &events) {
        for (const DevEvent &event : events) {
            if (const auto *call = std::get_if<dev_event::ToolCall>(&event)) {
                require(!m_seen.contains(call->id));
                m_seen.insert(call->id);
                m_open.insert(call->id);
            } else if (const auto *result = std::get_if<dev_event::ToolResult>(&event)) {
                require(m_open.remove(result->id));
            }
        }
    }
    bool isEmpty() const { return m_open.isEmpty(); }

private:
    QSet<QString> m_seen, m_open;
};

/// Whatever is asked, the answer is one line of JSON with the question's own id.
void answer(const codex_message::Request &request, const CodexItems &items) {
    const auto question = CodexQuestion::of(request, items, QStringLiteral("/nowhere"));
    if (!question)
        return;
    require(question->request().id == request.id.text());
    for (const auto kind : {DevPermissionDecision::Kind::deny, DevPermissionDecision::Kind::allowSession}) {
        const QByteArray line = json_rpc::answer(question->rpcId, question->answer(kind));
        const auto read = Json::decode<boost::json::value>(line);
        require(!line.contains('\n') && read && read->at("id") == request.id.value);
    }
}

} // namespace

/// Whatever Codex writes, a line at a time, every call gets one result and every question an answer.
void fuzzCodex(QByteArrayView input) {
    CodexItems items;
    Calls calls;
    for (const QByteArray &line : input.toByteArray().split('\n')) {
        const auto message = Json::decode<CodexMessage>(line);
        if (!message)
            continue;
        CodexItems::Events events;
        if (const auto *started = std::get_if<codex_message::ItemStarted>(&message->what))
            items.started(started->item, events);
        else if (const auto *completed = std::get_if<codex_message::ItemCompleted>(&message->what))
            items.completed(completed->item, events);
        else if (const auto *delta = std::get_if<codex_message::MessageDelta>(&message->what))
            items.messageDelta(*delta, events);
        else if (const auto *output = std::get_if<codex_message::OutputDelta>(&message->what))
            items.outputDelta(*output, events);
        else if (const auto *request = std::get_if<codex_message::Request>(&message->what))
            answer(*request, items);
        calls.take(events);
    }
    CodexItems::Events last;
    items.closeAll(last);
    calls.take(last);
    require(calls.isEmpty());
}

} // namespace lmp
