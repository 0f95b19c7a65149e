#include "terminal/ChatOutput.h"

#include "core/Json.h"
#include "terminal/CardText.h"
#include "terminal/ChatEvents.h"

namespace lmp {

using namespace Qt::StringLiterals;

ChatOutput::ChatOutput(Console &console, ChatWithTwinView &view, SafetyGateStore &safety, bool jsonl)
    : m_console(console)
    , m_safety(safety)
    , m_jsonl(jsonl) {
    connect(&view, &ChatWithTwinView::turnStarted, this, &ChatOutput::onStarted);
    connect(&view, &ChatWithTwinView::deltaReceived, this, &ChatOutput::onDelta);
    connect(&view, &ChatWithTwinView::memoriesReceived, this, [this](const QList<UsedMemory> &used) {
        m_used = used;
        if (m_jsonl)
            emitLine(jsonl::Memories{.used = used});
    });
    connect(&view, &ChatWithTwinView::turnCompleted, this, &ChatOutput::onCompleted);
    connect(&view, &ChatWithTwinView::turnFailed, this, &ChatOutput::onFailed);
    connect(&view, &ChatWithTwinView::turnAbandoned, this, &ChatOutput::onAbandoned);
    connect(&safety, &SafetyGateStore::crisisChanged, this, &ChatOutput::onCrisis);
    connect(&safety, &SafetyGateStore::continuousUseChanged, this, &ChatOutput::onContinuousUse);
}

template <class Event>
void ChatOutput::emitLine(const Event &event) {
    m_console.line(Json::encode(event));
}

void ChatOutput::onStarted(const QString &conversationId, const QString &messageId) {
    m_used.clear();
    m_endsWithLineFeed = true;
    if (m_jsonl)
        emitLine(jsonl::TurnStarted{.conversationId = conversationId, .messageId = messageId});
}

void ChatOutput::onDelta(const QString &text) {
    if (m_jsonl)
        return emitLine(jsonl::Delta{.text = text});
    m_console.reply(text);
    m_endsWithLineFeed = text.isEmpty() ? m_endsWithLineFeed : text.endsWith(u'\n');
}

void ChatOutput::endReply() {
    if (!std::exchange(m_endsWithLineFeed, true))
        m_console.reply(u"\n"_s);
}

void ChatOutput::onCompleted(const TurnOutcome &outcome) {
    if (m_jsonl) {
        return emitLine(jsonl::TurnCompleted{.text = outcome.text,
                                             .requestId = outcome.requestId,
                                             .charged = outcome.charged,
                                             .balance = outcome.balance,
                                             .notice = outcome.notice});
    }
    endReply();
    if (outcome.notice)
        m_console.error(*outcome.notice);
    if (!m_used.isEmpty())
        m_console.note(CardText::used(m_used));
    sayCharge(outcome);
}

void ChatOutput::onFailed(const TurnOutcome &outcome) {
    if (m_jsonl) {
        const bool failed = outcome.state == ConversationDeliveryState::failed;
        return emitLine(jsonl::TurnFailed{.state = failed ? u"failed"_s : u"unknown"_s,
                                          .reason = outcome.reason.value_or(QString())});
    }
    endReply();
    if (outcome.reason)
        m_console.error(*outcome.reason);
    if (outcome.charged)
        sayCharge(outcome);
}

void ChatOutput::onAbandoned() {
    const QString reason = u"登录已变化，没有等到这一轮的结果与结算。请先查看账单。"_s;
    if (m_jsonl)
        return emitLine(jsonl::TurnFailed{.state = u"unknown"_s, .reason = reason});
    endReply();
    m_console.error(reason);
}

void ChatOutput::sayCharge(const TurnOutcome &outcome) {
    m_console.note(CardText::charge(outcome.charged, outcome.balance));
}

void ChatOutput::onCrisis() {
    if (m_jsonl)
        return emitLine(jsonl::Safety{.crisis = m_safety.crisis(), .continuousUse = m_safety.continuousUse()});
    if (m_safety.crisis())
        m_console.card(CardText::crisis(*m_safety.crisis()));
}

void ChatOutput::onContinuousUse() {
    if (m_jsonl)
        return emitLine(jsonl::Safety{.crisis = m_safety.crisis(), .continuousUse = m_safety.continuousUse()});
    if (m_safety.continuousUse())
        m_console.card(CardText::continuousUse(*m_safety.continuousUse()));
}

} // namespace lmp
