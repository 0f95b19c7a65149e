#include "conversation/TwinReplyRetry.h"

#include "conversation/ConversationTexts.h"
#include "conversation/RetryAnswer.h"
#include "conversation/TurnVerdict.h"
#include "core/Detach.h"

#include <QPointer>
#include <QUuid>

namespace lmp {

namespace {

/// The message that a reply answered: the one it names, else the user's last one before it.
const ConvMessageDTO *answeredBy(const ConversationDTO &conversation, const QString &twinMessageId) {
    const ConvMessageDTO *last = nullptr;
    for (const ConvMessageDTO &message : conversation.messages) {
        if (message.role == TalkRole::user)
            last = &message;
        else if (message.id == twinMessageId)
            return message.replyToUserMessageId
                       ? ConversationMessageDelivery::find(conversation, *message.replyToUserMessageId)
                       : last;
    }
    return nullptr;
}

QString stale() {
    return ConversationMessageDelivery::reason(ConversationMessageDelivery::Failure::staleRetry);
}

} // namespace

TwinReplyRetry::TwinReplyRetry(ConversationSession &session, QObject *parent)
    : QObject(parent)
    , m_session(session) {
    connect(&session, &ConversationSession::opened, this, [this] {
        // What goes on under another name was not read anew.
        if (!m_session.isActive())
            m_unconfirmed.clear();
        abandon();
    });
}

std::optional<QString> TwinReplyRetry::startForReply(const QString &twinMessageId) {
    const auto *conversation = m_session.conversation();
    const auto *target = conversation ? answeredBy(*conversation, twinMessageId) : nullptr;
    return target ? start(*target, twinMessageId, std::nullopt) : stale();
}

std::optional<QString> TwinReplyRetry::startForMessage(const QString &userMessageId,
                                                       std::optional<QString> editedInput) {
    const auto *conversation = m_session.conversation();
    const auto *target = conversation ? ConversationMessageDelivery::find(*conversation, userMessageId) : nullptr;
    return target && target->role == TalkRole::user ? start(*target, {}, std::move(editedInput)) : stale();
}

std::optional<QString> TwinReplyRetry::start(const ConvMessageDTO &target, const QString &sourceTwinId,
                                             std::optional<QString> editedInput) {
    if (isRunning())
        return ConversationTexts::heldByReply();
    if (!m_session.belongsToCurrentAccount())
        return ConversationTexts::accountChanged();
    if (!m_session.known() || m_session.unsaved())
        return ConversationTexts::retryNeedsSave();
    // Another answer on top of one that may have been charged could be charged again.
    if (target.deliveryState == ConversationDeliveryState::unknown ||
        target.deliveryState == ConversationDeliveryState::pending)
        return ConversationTexts::unknownMessage();
    if (m_unconfirmed.contains(target.id))
        return ConversationTexts::retryUnconfirmed();
    const ConversationDTO before = *m_session.conversation();
    const ConversationRetryState::Operation operation{
        .id = QUuid::createUuid().toString(QUuid::WithoutBraces),
        .token = m_session.account().signIn(),
        .conversationId = before.id,
        .sourceTwinId = sourceTwinId,
        .mode = before.mode,
        .target = target,
    };
    m_state.active = operation;
    detach(run(operation, {before.id, target.id, std::move(editedInput)}, before), "asking for another answer");
    Q_EMIT stateChanged();
    return std::nullopt;
}

void TwinReplyRetry::abandon() {
    if (!isRunning())
        return;
    m_state.active.reset();
    Q_EMIT stateChanged();
}

QCoro::Task<> TwinReplyRetry::run(ConversationRetryState::Operation operation, RetryReq request,
                                  ConversationDTO before) {
    const QPointer self(this);
    const auto answer = co_await m_session.service().retry(request);
    if (!self || m_state.active != operation)
        co_return;
    const bool sameAccount = m_session.belongsToCurrentAccount() && m_session.account().signIn() == operation.token;
    if (!sameAccount) {
        end({.text = ConversationTexts::retryUnmatched(), .unconfirmed = true});
        co_return;
    }
    if (!answer) {
        const bool refused = TurnVerdict::ofPlain(answer.error()).kind == TurnVerdict::Kind::Refused;
        end({.text = ConversationTexts::retryUnconfirmed(), .unconfirmed = !refused});
        co_return;
    }
    const QString text = apply(operation, request, before, *answer);
    // Whoever heard of the change may have opened another conversation, or closed the chat.
    if (!self || m_state.active != operation)
        co_return;
    end({.messageId = text.isNull() ? answer->messageId : QString(),
         .text = text,
         .unconfirmed = !text.isNull(),
         .free = answer->free.value_or(false)});
}

QString TwinReplyRetry::apply(const ConversationRetryState::Operation &operation, const RetryReq &request,
                              const ConversationDTO &before, const RetryResp &answer) {
    ConversationDTO after = *m_session.conversation();
    const auto *target = ConversationMessageDelivery::find(std::as_const(after), operation.target.id);
    if (!target || *target != operation.target || after.id != operation.conversationId || after.mode != operation.mode)
        return stale();
    if (after.workspace != before.workspace)
        return ConversationTexts::retryWorkspaceChanged();
    if (after.messages != before.messages)
        return ConversationTexts::retryConversationChanged();
    if (const auto applied = RetryAnswer::apply(after, answer, operation.target.id); !applied)
        return applied.error().reason;
    auto *answered = ConversationMessageDelivery::find(after, operation.target.id);
    answered->deliveryState = ConversationDeliveryState::submitted;
    if (request.editedInput)
        answered->text = *request.editedInput;
    m_session.edit([&](ConversationDTO &conversation) { conversation = std::move(after); });
    return {};
}

void TwinReplyRetry::end(const RetryOutcome &outcome) {
    const QPointer self(this);
    if (outcome.unconfirmed)
        m_unconfirmed.insert(m_state.active->target.id);
    m_state.active.reset();
    if (outcome.text.isNull())
        m_session.save();
    Q_EMIT stateChanged();
    if (self)
        Q_EMIT ended(outcome);
}

} // namespace lmp
