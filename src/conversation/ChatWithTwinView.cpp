#include "conversation/ChatWithTwinView.h"

#include "conversation/ChatStreamFrame.h"
#include "conversation/ChatTurn.h"
#include "conversation/ConversationSendGuard.h"
#include "conversation/ConversationTexts.h"
#include "conversation/ConversationTitle.h"
#include "conversation/RelayChatResponse.h"
#include "conversation/TurnVerdict.h"
#include "core/Detach.h"
#include "identity/SafetyExtraction.h"

#include <QPointer>
#include <QUuid>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

const QString streamPath = u"/relay/chat/stream"_s;
const QString plainPath = u"/relay/chat"_s;

QString freshId() {
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

/// The safety blocks of a frame whose other fields are wrong.
struct SafetyBlocks {
    std::optional<boost::json::value> safety;
    std::optional<boost::json::value> continuousUse;
};
BOOST_DESCRIBE_STRUCT(SafetyBlocks, (), (safety, continuousUse))

void show(SafetyGateStore &gate, const SafetyBlocks &blocks) {
    if (const auto envelope = blocks.safety ? SafetyExtraction::envelope(*blocks.safety) : std::nullopt) {
        if (auto signal = SafetyExtraction::signal(*envelope))
            gate.show(*std::move(signal));
    }
    if (auto notice = blocks.continuousUse ? SafetyExtraction::notice(*blocks.continuousUse) : std::nullopt)
        gate.show(*std::move(notice));
}

} // namespace

ChatWithTwinView::ChatWithTwinView(ConversationSession &session, SafetyGateStore &safety, APIClient api,
                                   SSEClient events, Recorder recorder, QObject *parent)
    : QObject(parent)
    , m_session(session)
    , m_safety(safety)
    , m_api(std::move(api))
    , m_events(std::move(events))
    , m_recorder(std::move(recorder))
    , m_retry(session) {
    connect(&m_session, &ConversationSession::opened, this, &ChatWithTwinView::onOpened);
    connect(&m_retry, &TwinReplyRetry::stateChanged, this, &ChatWithTwinView::stateChanged);
    connect(&m_retry, &TwinReplyRetry::ended, this, &ChatWithTwinView::onRetryEnded);
}

ChatWithTwinView::~ChatWithTwinView() {
    if (m_turn)
        release();
}

std::optional<ChatWithTwinView::Reference> ChatWithTwinView::activeSend() const {
    return m_turn ? std::optional(m_turn->reference) : std::nullopt;
}

std::optional<QString> ChatWithTwinView::refusal(const QString &text, ConversationSendScope scope) const {
    if (!m_session.isActive())
        return ConversationTexts::nothingOpen();
    if (!m_session.belongsToCurrentAccount())
        return ConversationTexts::accountChanged();
    if (text.trimmed().isEmpty())
        return ConversationTexts::nothingTyped();
    const bool reply = sending() || m_retry.isRunning();
    return ConversationSendGuard{reply, elsewhere.call, elsewhere.creation}.heldBack(scope);
}

std::expected<ConversationMessageDelivery::Reference, QString> ChatWithTwinView::send(const QString &text,
                                                                                      ConversationSendScope scope) {
    // A turn that was left behind without a word from the session holds nothing back.
    recheck();
    if (auto why = refusal(text, scope))
        return std::unexpected(*std::move(why));
    ConvMessageDTO message;
    message.id = freshId();
    message.role = TalkRole::user;
    message.text = text;
    message.deliveryState = ConversationDeliveryState::pending;
    auto reference = m_session.referenceTo(message.id);
    m_session.edit([&](ConversationDTO &conversation) {
        if (conversation.title.isEmpty())
            conversation.title = ConversationTitle::of(text);
        conversation.messages.push_back(message);
    });
    auto turn = std::make_shared<ChatTurn>();
    turn->reference = reference;
    turn->signIn = m_session.account().signIn();
    turn->request = ChatTurn::ask(*m_session.conversation(), message.id, cheaperMode);
    turn->request.companion = companion;
    turn->request.incognito = m_session.incognito();
    turn->request.surface = surface;
    turn->replyId = freshId();
    m_turn = turn;
    m_errorText.reset();
    m_lastCharge.reset();
    m_session.keep();
    // The turn begins when the caller is back and has the reference.
    QMetaObject::invokeMethod(
        this,
        [this, turn] {
            if (!isCurrent(turn))
                return;
            const QPointer self(this);
            Q_EMIT turnStarted(turn->reference.conversationId, turn->reference.messageId);
            if (self && isCurrent(turn))
                detach(run(turn), "a turn of the chat");
        },
        Qt::QueuedConnection);
    Q_EMIT stateChanged();
    return reference;
}

void ChatWithTwinView::stop() {
    const TurnPtr turn = m_turn;
    if (!turn || !isCurrent(turn))
        return;
    conclude(turn,
             {.state = ConversationDeliveryState::unknown, .reason = ConversationTexts::stopped(), .stopped = true});
}

QCoro::Task<> ChatWithTwinView::run(TurnPtr turn) {
    const QPointer self(this);
    auto stream = m_events.stream(streamPath, "POST", turn->request, turn->stop.get_token());
    for (;;) {
        const auto next = co_await stream.next();
        if (!self || !isCurrent(turn))
            co_return;
        if (!next) {
            failStream(turn, next.error());
            co_return;
        }
        const auto step = *next ? take(turn, (*next)->data) : Step::Aborted;
        if (!self || !isCurrent(turn))
            co_return;
        if (step == Step::Done) {
            complete(turn);
            co_return;
        }
        if (step == Step::Aborted) {
            conclude(turn, {.state = ConversationDeliveryState::unknown, .reason = ConversationTexts::endedEarly()});
            co_return;
        }
    }
}

void ChatWithTwinView::failStream(const TurnPtr &turn, const APIError &error) {
    const auto verdict = TurnVerdict::ofStream(error, turn->textArrived);
    switch (verdict.kind) {
    case TurnVerdict::Kind::Unavailable:
        detach(runPlain(turn), "a turn of the chat, without a stream");
        break;
    case TurnVerdict::Kind::Refused:
        conclude(turn, {.state = ConversationDeliveryState::failed, .reason = verdict.text});
        break;
    case TurnVerdict::Kind::Unconfirmed:
        conclude(turn, {.state = ConversationDeliveryState::unknown, .reason = verdict.text});
        break;
    }
}

QCoro::Task<> ChatWithTwinView::runPlain(TurnPtr turn) {
    const QPointer self(this);
    const auto answer = co_await m_api.request<RelayChatResponse>(plainPath, "POST", turn->request.plain(), true,
                                                                  turn->stop.get_token());
    if (!self || !isCurrent(turn))
        co_return;
    if (!answer) {
        const auto verdict = TurnVerdict::ofPlain(answer.error());
        const bool refused = verdict.kind == TurnVerdict::Kind::Refused;
        conclude(turn, {.state = refused ? ConversationDeliveryState::failed : ConversationDeliveryState::unknown,
                        .reason = verdict.text});
        co_return;
    }
    ChatStreamFrame whole;
    whole.delta = answer->text;
    whole.usedMemories = answer->usedMemories;
    whole.pipCharged = answer->pipCharged;
    whole.balance = answer->balance;
    whole.requestId = answer->requestId;
    whole.safety = answer->safety;
    whole.continuousUse = answer->continuousUse;
    absorb(turn, whole);
    if (self && isCurrent(turn))
        complete(turn);
}

bool ChatWithTwinView::isCurrent(const TurnPtr &turn) {
    if (m_turn != turn)
        return false;
    if (m_session.holds(turn->reference) && m_session.account().signIn() == turn->signIn)
        return true;
    letGo();
    return false;
}

void ChatWithTwinView::recheck() {
    if (m_turn)
        isCurrent(TurnPtr(m_turn));
}

void ChatWithTwinView::knowOwner() {
    if (m_turn)
        m_turn->reference = m_session.referenceTo(m_turn->reference.messageId);
}

void ChatWithTwinView::letGo() {
    const QPointer self(this);
    release();
    Q_EMIT stateChanged();
    if (self)
        Q_EMIT turnAbandoned();
}

ChatWithTwinView::Step ChatWithTwinView::take(const TurnPtr &turn, const QByteArray &data) {
    const auto frame = Json::decode<ChatStreamFrame>(data);
    if (!frame) {
        if (turn->skippedFrames++ == 0)
            turn->skippedReason = frame.error().describe(Json::typeName<ChatStreamFrame>());
        if (const auto blocks = Json::decode<SafetyBlocks>(data))
            show(m_safety, *blocks);
        return Step::More;
    }
    absorb(turn, *frame);
    if (frame->error == u"stream_aborted"_s)
        return Step::Aborted;
    return frame->done.value_or(false) ? Step::Done : Step::More;
}

void ChatWithTwinView::absorb(const TurnPtr &turn, const ChatStreamFrame &frame) {
    const QPointer self(this);
    const auto latest = [](auto &kept, const auto &said) {
        if (said)
            kept = said;
    };
    latest(turn->used, frame.usedMemories);
    latest(turn->requestId, frame.requestId);
    latest(turn->charged, frame.pipCharged);
    latest(turn->balance, frame.balance);
    latest(m_lastCharge, frame.pipCharged);
    if (frame.balance) {
        m_balance = frame.balance;
        m_balanceAccount = turn->reference.accountId;
    }
    const QString delta = frame.delta.value_or(QString());
    grow(turn, delta);
    if (self && m_turn == turn && !delta.isEmpty())
        Q_EMIT deltaReceived(delta);
    if (self && m_turn == turn && (frame.pipCharged || frame.balance))
        Q_EMIT stateChanged();
    if (self && m_turn == turn && frame.usedMemories)
        Q_EMIT memoriesReceived(*frame.usedMemories);
    if (self && m_turn == turn)
        show(m_safety, {frame.safety, frame.continuousUse});
}

void ChatWithTwinView::grow(const TurnPtr &turn, const QString &delta) {
    if (delta.isEmpty())
        return;
    // A reply is paid for as it comes.
    m_session.keepSoon();
    if (std::exchange(turn->textArrived, true)) {
        m_session.appendText(turn->replyId, delta);
        return;
    }
    ConvMessageDTO reply;
    reply.id = turn->replyId;
    reply.role = TalkRole::twin;
    reply.text = delta;
    reply.replyToUserMessageId = turn->reference.messageId;
    m_session.edit([&](ConversationDTO &conversation) { conversation.messages.push_back(reply); });
}

void ChatWithTwinView::complete(const TurnPtr &turn) {
    TurnOutcome outcome{.state = ConversationDeliveryState::submitted};
    // Charged and empty: asking again would charge again, so that is left to the person.
    if (!turn->textArrived)
        outcome.notice = ConversationTexts::chargedEmpty();
    conclude(turn, std::move(outcome));
}

void ChatWithTwinView::conclude(const TurnPtr &turn, TurnOutcome outcome) {
    const QPointer self(this);
    outcome.reference = turn->reference;
    outcome.requestId = turn->requestId;
    outcome.charged = turn->charged;
    outcome.balance = turn->balance;
    release();
    m_errorText = outcome.reason ? outcome.reason : outcome.notice;
    ConversationSession &session = m_session;
    session.edit([&](ConversationDTO &conversation) {
        ConversationMessageDelivery::setState(conversation, turn->reference.messageId, outcome.state);
        if (auto *reply =
                turn->textArrived ? ConversationMessageDelivery::find(conversation, turn->replyId) : nullptr) {
            reply->requestId = turn->requestId;
            reply->used = turn->used;
            outcome.text = reply->text;
        }
    });
    // The save may take its time, and what a turn cost must not hang on the program living that long.
    session.keep();
    session.save();
    if (self)
        Q_EMIT stateChanged();
    if (self && outcome.state == ConversationDeliveryState::submitted)
        Q_EMIT turnCompleted(outcome);
    else if (self)
        Q_EMIT turnFailed(outcome);
}

void ChatWithTwinView::release() {
    const TurnPtr turn = std::exchange(m_turn, nullptr);
    turn->stop.request_stop();
    if (turn->skippedFrames > 0 && m_recorder)
        m_recorder(u"stability.client.error"_s, u"client"_s, streamPath,
                   {{u"endpoint"_s, streamPath},
                    {u"kind"_s, u"decode_failed"_s},
                    {u"reason"_s, turn->skippedReason},
                    {u"status"_s, 200},
                    {u"count"_s, turn->skippedFrames}});
}

void ChatWithTwinView::onOpened() {
    m_errorText.reset();
    m_lastCharge.reset();
    // What one account holds says nothing of another's.
    if (m_balanceAccount != m_session.account().key())
        m_balance.reset();
    m_showUsed.reset();
    m_feedback.clear();
    m_reasonsOpenFor.reset();
    if (m_turn)
        letGo();
    else
        Q_EMIT stateChanged();
}

void ChatWithTwinView::onRetryEnded(const RetryOutcome &outcome) {
    const QPointer self(this);
    if (!outcome.free && (outcome.unconfirmed || !outcome.messageId.isEmpty())) {
        // What it cost, and what is left, the service has not told.
        m_lastCharge.reset();
        m_balance.reset();
        Q_EMIT stateChanged();
    }
    if (self)
        Q_EMIT retryEnded(outcome);
}

void ChatWithTwinView::openUsed(const QString &messageId) {
    const auto *conversation = m_session.conversation();
    const auto *message = conversation ? ConversationMessageDelivery::find(*conversation, messageId) : nullptr;
    if (!message || !message->used || message->used->isEmpty())
        return;
    m_showUsed = message->used;
    Q_EMIT stateChanged();
}

void ChatWithTwinView::closeUsed() {
    m_showUsed.reset();
    Q_EMIT stateChanged();
}

std::optional<QString> ChatWithTwinView::retryReply(const QString &twinMessageId) {
    if (sending())
        return ConversationTexts::heldByReply();
    return m_retry.startForReply(twinMessageId);
}

std::optional<QString> ChatWithTwinView::retryMessage(const QString &userMessageId,
                                                      std::optional<QString> editedInput) {
    if (sending())
        return ConversationTexts::heldByReply();
    return m_retry.startForMessage(userMessageId, std::move(editedInput));
}

} // namespace lmp
