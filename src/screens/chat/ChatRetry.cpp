#include "screens/chat/ChatRetry.h"

#include "conversation/ChatWithTwinView.h"
#include "conversation/ConversationTexts.h"

#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;

ChatRetry::ChatRetry(ConversationSession &session, ChatWithTwinView &view, MessageListModel &messages,
                     ComposerInputs &inputs)
    : m_session(session)
    , m_view(view)
    , m_messages(messages)
    , m_inputs(inputs) {
    connect(&m_view, &ChatWithTwinView::retryEnded, this, &ChatRetry::onEnded);
    connect(&m_inputs, &ComposerInputs::replaced, this, &ChatRetry::onEdited);
}

void ChatRetry::onOpened() {
    m_row.clear();
    m_waiting.reset();
    m_input.reset();
}

void ChatRetry::onSaveEnded() {
    if (!m_waiting)
        return;
    const Waiting waiting = *m_waiting;
    stopWaiting();
    waiting.input ? send() : ask(waiting.messageId);
}

void ChatRetry::onEdited() {
    if (m_waiting && m_waiting->input &&
        (*m_waiting->input != m_inputs.current().text || m_waiting->messageId != target()))
        stopWaiting();
}

void ChatRetry::stopWaiting() {
    m_waiting.reset();
    m_messages.setRetrying({});
}

bool ChatRetry::waitsForSave(const Waiting &waiting) {
    // Only what the service has can be answered again, and right after a turn it is about to have it.
    if (!m_session.isSaving() || m_view.sending() || m_view.retry().isRunning())
        return false;
    m_waiting = waiting;
    m_messages.setError(waiting.messageId, {});
    m_messages.setRetrying(waiting.messageId);
    return true;
}

bool ChatRetry::ask(const QString &messageId) {
    if (waitsForSave({.messageId = messageId, .input = std::nullopt}))
        return true;
    const auto *message = messageOf(messageId);
    const bool twin = message && message->role == TalkRole::twin;
    return started(messageId, twin ? m_view.retryReply(messageId) : m_view.retryMessage(messageId));
}

bool ChatRetry::askEdited(const QString &userMessageId, const QString &edited) {
    const auto *message = messageOf(userMessageId);
    if (edited.isEmpty() || (message && message->text == edited))
        return ask(userMessageId);
    if (target() != userMessageId && !m_inputs.current().isEmpty()) {
        m_messages.setError(userMessageId, ConversationTexts::inputBoxOccupied());
        return false;
    }
    m_inputs.setText(edited);
    m_inputs.setRetryMessage(userMessageId);
    const QPointer self(this);
    Q_EMIT inputChanged();
    return self && send();
}

bool ChatRetry::restore(const QString &userMessageId) {
    const auto *message = messageOf(userMessageId);
    if (!message || message->deliveryState != ConversationDeliveryState::failed)
        return false;
    if (target() == userMessageId)
        return true;
    if (!m_inputs.current().isEmpty()) {
        m_messages.setError(userMessageId, ConversationTexts::inputBoxOccupied());
        return false;
    }
    m_inputs.setText(message->text);
    // What nobody keeps, the service cannot answer again: there it is said anew.
    if (!m_session.incognito())
        m_inputs.setRetryMessage(userMessageId);
    m_messages.setError(userMessageId, {});
    Q_EMIT inputChanged();
    return true;
}

bool ChatRetry::send() {
    const QString target = this->target();
    const QString text = m_inputs.current().text;
    if (text.trimmed().isEmpty()) {
        Q_EMIT held(ConversationTexts::nothingTyped());
        return false;
    }
    if (waitsForSave({.messageId = target, .input = text}))
        return true;
    const auto *message = messageOf(target);
    const bool edited = !message || message->text != text;
    if (const auto why = m_view.retryMessage(target, edited ? std::optional(text) : std::nullopt)) {
        Q_EMIT held(*why);
        return false;
    }
    m_input = text;
    started(target, std::nullopt);
    const QPointer self(this);
    Q_EMIT inputChanged();
    if (self)
        Q_EMIT sent();
    return true;
}

bool ChatRetry::started(const QString &row, const std::optional<QString> &refusal) {
    m_messages.setError(row, refusal.value_or(QString()));
    if (refusal)
        return false;
    m_row = row;
    m_messages.setRetrying(row);
    return true;
}

void ChatRetry::onEnded(const RetryOutcome &outcome) {
    const QString row = std::exchange(m_row, {});
    const auto sentInput = std::exchange(m_input, std::nullopt);
    m_messages.setRetrying({});
    if (!outcome.messageId.isEmpty())
        m_messages.setCharge(outcome.messageId, outcome.free ? u"0 Pip"_s : u"—"_s);
    if (outcome.unconfirmed)
        m_messages.setUnconfirmed(row);
    if (!outcome.text.isNull())
        m_messages.setError(row, outcome.text);
    // What was typed on meanwhile stays, and says something new.
    else if (sentInput && m_inputs.current().text == *sentInput)
        Q_EMIT answered();
    else if (sentInput)
        clearTarget();
}

void ChatRetry::dropStale() {
    const auto *message = messageOf(target());
    if (!target().isEmpty() && (!message || message->deliveryState != ConversationDeliveryState::failed))
        clearTarget();
}

void ChatRetry::clearTarget() {
    m_inputs.setRetryMessage(std::nullopt);
    onEdited();
    Q_EMIT inputChanged();
}

const ConvMessageDTO *ChatRetry::messageOf(const QString &id) const {
    const auto *conversation = m_session.conversation();
    return conversation ? ConversationMessageDelivery::find(*conversation, id) : nullptr;
}

} // namespace lmp
