#include "conversation/ChatWithTwinView.h"

#include "conversation/ConversationTexts.h"
#include "core/Detach.h"

#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;

QStringList ChatWithTwinView::feedbackReasons() {
    return {u"not_like_me"_s, u"fabricated"_s, u"bad_timing"_s, u"too_long"_s, u"missed_the_point"_s, u"overstepped"_s};
}

void ChatWithTwinView::likeReply(const QString &messageId) {
    choose({.polarity = u"positive"_s, .messageId = messageId}, u"talk.feedback.up"_s);
}

void ChatWithTwinView::openReasons(const QString &messageId) {
    m_reasonsOpenFor = messageId;
    Q_EMIT stateChanged();
}

void ChatWithTwinView::closeReasons() {
    m_reasonsOpenFor.reset();
    Q_EMIT stateChanged();
}

void ChatWithTwinView::dislikeReply(const QString &messageId, const QString &reason) {
    if (feedbackReasons().contains(reason))
        choose({.polarity = u"negative"_s, .reason = reason, .messageId = messageId}, u"talk.feedback.down"_s);
}

void ChatWithTwinView::choose(FeedbackReq request, const QString &event) {
    const auto *conversation = m_session.conversation();
    const auto *reply = conversation ? ConversationMessageDelivery::find(*conversation, request.messageId) : nullptr;
    if (!reply || reply->role != TalkRole::twin || !m_session.belongsToCurrentAccount())
        return;
    request.conversationId = conversation->id;
    request.requestId = reply->requestId;
    m_feedback.insert(request.messageId, request.polarity);
    m_reasonsOpenFor.reset();
    if (m_recorder)
        m_recorder(event, u"conversation"_s, request.conversationId, {});
    detach(postFeedback(std::move(request)), "feedback on a reply");
    Q_EMIT stateChanged();
}

QCoro::Task<> ChatWithTwinView::postFeedback(FeedbackReq request) {
    const QPointer self(this);
    const auto answer = co_await m_api.request<OkResp>(u"/app/feedback"_s, "POST", request);
    const auto *conversation = self ? m_session.conversation() : nullptr;
    if (!conversation || conversation->id != request.conversationId || (answer && answer->ok.value_or(true)))
        co_return;
    // A choice that did not arrive is not shown as made, unless another was made meanwhile.
    if (m_feedback.value(request.messageId) == request.polarity)
        m_feedback.remove(request.messageId);
    m_errorText = ConversationTexts::feedbackNotSent();
    Q_EMIT stateChanged();
}

} // namespace lmp
