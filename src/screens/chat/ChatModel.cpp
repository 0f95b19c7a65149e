#include "screens/chat/ChatModel.h"

#include "app/Application.h"
#include "conversation/ConversationSearch.h"
#include "conversation/ConversationTexts.h"
#include "core/Detach.h"
#include "core/PlainLabel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;
using Copy = ConversationSession::Copy;

namespace {

QString pip(std::optional<qint64> amount) {
    return amount ? QString::number(*amount) + u" Pip"_s : u"—"_s;
}

QString ownerOf(const ConversationAccount &account) {
    return account.key() + u'\n' + account.signIn();
}

} // namespace

ChatModel::ChatModel(Application &application, QObject *parent)
    : ChatModel(ChatServices::of(application), parent) {
    // A stream that says nothing would not notice that its sign-in has ended.
    for (const auto signal :
         {&AuthStore::generationChanged, &AuthStore::phaseChanged, &AuthStore::verificationFailedChanged})
        connect(&application.auth(), signal, this, &ChatModel::recheckAccount);
    m_localInput = application.localInput().add([this] { return preserve(); });
}

ChatModel::ChatModel(ChatServices services, QObject *parent)
    : QObject(parent)
    , m_services(std::move(services))
    , m_session(ConversationService(m_services.api), m_services.drafts, m_services.account, *m_services.clock)
    , m_view(m_session, *m_services.safety, m_services.api, m_services.events, m_services.recorder)
    , m_messages(m_session, m_view, *m_services.clock)
    , m_find(m_session)
    , m_speech(m_session, m_services.api, m_services.makeAudio)
    , m_extraction(
          m_services.api, m_session, [this] { return isIdle(); }, m_services.extractions)
    , m_inputs(m_services.inputs, *m_services.clock)
    , m_owner(ownerOf(m_services.account)) {
    m_view.surface = u"chat"_s;
    connect(&m_session, &ConversationSession::opened, this, &ChatModel::onOpened);
    connect(&m_session, &ConversationSession::saveEnded, this, &ChatModel::onSaveEnded);
    connect(&m_view, &ChatWithTwinView::stateChanged, this, &ChatModel::onViewChanged);
    connect(&m_view, &ChatWithTwinView::turnCompleted, this, &ChatModel::onTurnEnded);
    connect(&m_view, &ChatWithTwinView::turnFailed, this, &ChatModel::onTurnEnded);
    connect(&m_view, &ChatWithTwinView::retryEnded, this, &ChatModel::onRetryEnded);
    connect(&m_inputs, &ComposerInputs::replaced, this, &ChatModel::inputChanged);
    connect(&m_inputs, &ComposerInputs::stateChanged, this, &ChatModel::inputDraftChanged);
    connect(&m_inputs, &ComposerInputs::kept, this, &ChatModel::draftsChanged);
    m_inputs.open(m_services.account.current());
    if (m_services.search)
        m_services.search->follow(&m_session);
}

ChatModel::~ChatModel() {
    // What the members say while they go is for nobody.
    m_session.disconnect(this);
    m_view.disconnect(this);
    m_inputs.disconnect(this);
    if (m_services.search)
        m_services.search->holdBack(this, false);
}

// The conversation

QString ChatModel::conversationId() const {
    return m_session.isActive() ? m_session.conversation()->id : m_wantedId;
}

QString ChatModel::title() const {
    const auto *conversation = m_session.conversation();
    if (!conversation)
        return {};
    const QString title = PlainLabel::line(conversation->title);
    return title.isEmpty() ? u"新对话"_s : title;
}

QString ChatModel::incognitoText() const {
    return ConversationTexts::incognitoBanner();
}

void ChatModel::begin(bool incognito) {
    const auto *open = m_session.belongsToCurrentAccount() ? m_session.conversation() : nullptr;
    if (open && open->messages.isEmpty() && !m_session.known() && m_session.incognito() == incognito)
        return;
    endTurn();
    forgetOpening();
    m_session.begin({}, incognito);
    m_inputs.moveTo(place());
    Q_EMIT conversationChanged();
}

void ChatModel::load(const QString &id) {
    if (id.isEmpty() || (id == conversationId() && m_loadError.isEmpty()))
        return;
    openAs(id, Copy::Local);
}

void ChatModel::loadAt(const QString &id, const QString &messageId, const QString &query) {
    const auto arrive = [this, messageId, query] {
        m_find.beginAt(query, messageId);
    };
    if (m_session.belongsToCurrentAccount() && m_session.conversation()->id == id) {
        arrive();
        return;
    }
    load(id);
    m_whenOpened = arrive;
}

void ChatModel::reload() {
    if (!m_loadError.isEmpty())
        openAs(m_wantedId, Copy::Local);
}

void ChatModel::openServiceCopy() {
    if (conflicted())
        openAs(conversationId(), Copy::Service);
}

void ChatModel::openAs(const QString &id, Copy copy) {
    endTurn();
    forgetOpening();
    m_wantedId = id;
    m_loading = true;
    m_inputs.moveTo({.id = id, .cloudRevision = -1});
    detach(load(id, copy, m_loads), "opening a conversation");
    Q_EMIT conversationChanged();
}

QCoro::Task<> ChatModel::load(QString id, Copy copy, quint64 loads) {
    const QPointer self(this);
    const auto opened = co_await m_session.load(id, copy);
    if (!self || m_loads != loads)
        co_return;
    m_loading = false;
    if (!opened) {
        m_loadError = opened.error().reason;
        Q_EMIT conversationChanged();
        co_return;
    }
    m_inputs.describe(place());
    dropStaleRetry();
    Q_EMIT conversationChanged();
    if (self && m_loads == loads && m_whenOpened)
        std::exchange(m_whenOpened, nullptr)();
    if (!self || m_loads != loads || !m_session.unsaved())
        co_return;
    // Whether it is saved again is the person's word: the save before may have arrived.
    const bool conflict = m_session.conflicted();
    const bool kept = co_await m_session.preserve();
    if (!self || m_loads != loads || !m_session.unsaved() || m_session.isSaving())
        co_return;
    if (conflict)
        setNotice(kept ? ConversationTexts::conflict() : ConversationTexts::conflictNotKept());
    else
        setNotice(kept ? ConversationTexts::notSynchronised() : ConversationTexts::notKept());
}

void ChatModel::endTurn() {
    // What has arrived is saved with its conversation, which would otherwise be left as if nobody had answered.
    if (sending())
        stop();
}

void ChatModel::forgetOpening() {
    ++m_loads;
    m_loading = false;
    m_loadError.clear();
    m_wantedId.clear();
    m_heldReason.clear();
    m_linkNotice.clear();
    setNotice({});
    m_whenOpened = nullptr;
}

void ChatModel::onOpened() {
    m_retryRow.clear();
    m_retryWhenSaved.clear();
    m_retryInput.reset();
    Q_EMIT conversationChanged();
    Q_EMIT inputChanged();
}

ComposerInputs::Place ChatModel::place() const {
    const auto *conversation = m_session.conversation();
    if (!conversation)
        return {};
    return {.id = conversation->id,
            .title = conversation->title,
            .cloudRevision = m_session.known() ? conversation->revision.value_or(-1) : 0,
            .incognito = m_session.incognito()};
}

void ChatModel::saveAgain() {
    m_session.save();
}

void ChatModel::saveAsNew() {
    if (!isIdle() || !isOpen())
        return;
    const QPointer self(this);
    setNotice({});
    const QString before = conversationId();
    m_session.saveAsNew();
    if (!self)
        return;
    m_extraction.carryOver(before);
    m_inputs.moveTo(place(), true);
    Q_EMIT conversationChanged();
    if (self)
        Q_EMIT draftsChanged();
}

void ChatModel::onSaveEnded(const ConversationSession::Saved &saved) {
    const QPointer self(this);
    m_inputs.describe(place());
    setNotice(saved.text.value_or(QString()));
    if (const QString waiting = std::exchange(m_retryWhenSaved, {}); !waiting.isEmpty()) {
        m_messages.setRetrying({});
        waiting == retryTarget() ? sendRetry() : retry(waiting);
    }
    Q_EMIT conversationChanged();
    if (self && saved.where == ConversationSession::Saved::Where::Service)
        Q_EMIT this->saved();
    else if (self)
        Q_EMIT draftsChanged();
}

void ChatModel::setNotice(const QString &notice) {
    if (std::exchange(m_notice, notice) != notice)
        Q_EMIT noticeChanged();
}

void ChatModel::closeNotice() {
    setNotice({});
}

void ChatModel::closeLinkNotice() {
    m_linkNotice.clear();
    Q_EMIT noticeChanged();
}

void ChatModel::recheckAccount() {
    const QString owner = ownerOf(m_services.account);
    if (std::exchange(m_owner, owner) == owner)
        return;
    const QPointer self(this);
    forgetOpening();
    m_inputs.open(m_services.account.current());
    m_session.close();
    if (!self)
        return;
    m_used.show({});
    Q_EMIT conversationChanged();
}

// The turn

void ChatModel::onViewChanged() {
    if (const auto &used = m_view.showUsed())
        m_used.show(*used);
    if (m_services.search)
        m_services.search->holdBack(this, sending());
    Q_EMIT stateChanged();
}

QString ChatModel::balanceText() const {
    return pip(m_view.balance());
}

QString ChatModel::lastChargeText() const {
    return pip(m_view.lastCharge());
}

void ChatModel::setCheaperMode(bool cheaper) {
    if (std::exchange(m_view.cheaperMode, cheaper) != cheaper)
        Q_EMIT stateChanged();
}

bool ChatModel::send() {
    m_heldReason.clear();
    if (!retryTarget().isEmpty())
        return sendRetry();
    const auto reference = m_view.send(input());
    if (!reference) {
        hold(reference.error());
        return false;
    }
    m_inputs.describe(place());
    m_inputs.clear();
    m_messages.jumpToLatest();
    Q_EMIT conversationChanged();
    Q_EMIT sent();
    return true;
}

void ChatModel::stop() {
    m_view.stop();
}

void ChatModel::hold(const QString &reason) {
    m_heldReason = reason;
    Q_EMIT inputChanged();
}

void ChatModel::onTurnEnded(const TurnOutcome &outcome) {
    const QString row = m_messages.lastOfTurn(outcome.reference.messageId);
    if (outcome.stopped)
        m_messages.setStopped(row);
    else
        m_messages.setError(row, outcome.reason ? *outcome.reason : outcome.notice.value_or(QString()));
    // Of a refused turn nothing was charged, and nothing is claimed.
    if (outcome.charged || outcome.state != ConversationDeliveryState::failed)
        m_messages.setCharge(row, pip(outcome.charged));
}

// Another answer

bool ChatModel::retryReply(const QString &twinMessageId) {
    return retry(twinMessageId);
}

bool ChatModel::waitsForSave(const QString &messageId) {
    // Only what the service has can be answered again, and right after a turn it is about to have it.
    if (!m_session.isSaving() || !isIdle())
        return false;
    m_retryWhenSaved = messageId;
    m_messages.setError(messageId, {});
    m_messages.setRetrying(messageId);
    return true;
}

bool ChatModel::retry(const QString &messageId) {
    if (waitsForSave(messageId))
        return true;
    const auto *message = messageOf(messageId);
    const bool twin = message && message->role == TalkRole::twin;
    return startedRetry(messageId, twin ? m_view.retryReply(messageId) : m_view.retryMessage(messageId));
}

bool ChatModel::retryMessage(const QString &userMessageId, const QString &edited) {
    const auto *message = messageOf(userMessageId);
    if (edited.isEmpty() || (message && message->text == edited))
        return retry(userMessageId);
    if (retryTarget() != userMessageId && !m_inputs.current().isEmpty()) {
        m_messages.setError(userMessageId, ConversationTexts::inputBoxOccupied());
        return false;
    }
    m_inputs.setText(edited);
    m_inputs.setRetryMessage(userMessageId);
    Q_EMIT inputChanged();
    return send();
}

bool ChatModel::restoreMessage(const QString &userMessageId) {
    const auto *message = messageOf(userMessageId);
    if (!message || message->deliveryState != ConversationDeliveryState::failed)
        return false;
    if (retryTarget() == userMessageId)
        return true;
    if (!m_inputs.current().isEmpty()) {
        m_messages.setError(userMessageId, ConversationTexts::inputBoxOccupied());
        return false;
    }
    m_inputs.setText(message->text);
    m_inputs.setRetryMessage(userMessageId);
    m_messages.setError(userMessageId, {});
    Q_EMIT inputChanged();
    return true;
}

bool ChatModel::sendRetry() {
    const QString target = retryTarget();
    const QString text = input();
    if (text.trimmed().isEmpty()) {
        hold(ConversationTexts::nothingTyped());
        return false;
    }
    if (waitsForSave(target))
        return true;
    const auto *message = messageOf(target);
    const bool edited = !message || message->text != text;
    if (const auto why = m_view.retryMessage(target, edited ? std::optional(text) : std::nullopt)) {
        hold(*why);
        return false;
    }
    m_retryInput = text;
    startedRetry(target, std::nullopt);
    Q_EMIT inputChanged();
    Q_EMIT sent();
    return true;
}

bool ChatModel::startedRetry(const QString &row, const std::optional<QString> &refusal) {
    m_messages.setError(row, refusal.value_or(QString()));
    if (refusal)
        return false;
    m_retryRow = row;
    m_messages.setRetrying(row);
    return true;
}

void ChatModel::onRetryEnded(const QString &, const QString &text) {
    const QString row = std::exchange(m_retryRow, {});
    const auto sentInput = std::exchange(m_retryInput, std::nullopt);
    m_messages.setRetrying({});
    if (!text.isNull())
        m_messages.setError(row, text);
    // What was typed on meanwhile stays, and says something new.
    else if (sentInput && input() == *sentInput)
        m_inputs.clear();
    else if (sentInput)
        clearRetryTarget();
}

void ChatModel::dropStaleRetry() {
    const QString target = retryTarget();
    const auto *message = messageOf(target);
    if (!target.isEmpty() && (!message || message->deliveryState != ConversationDeliveryState::failed))
        clearRetryTarget();
}

void ChatModel::clearRetryTarget() {
    m_inputs.setRetryMessage(std::nullopt);
    Q_EMIT inputChanged();
}

const ConvMessageDTO *ChatModel::messageOf(const QString &id) const {
    const auto *conversation = m_session.conversation();
    return conversation ? ConversationMessageDelivery::find(*conversation, id) : nullptr;
}

// The input

QString ChatModel::input() const {
    return m_inputs.current().text;
}

void ChatModel::setInput(const QString &text) {
    if (text == input())
        return;
    m_inputs.setText(text);
    if (isIdle())
        m_heldReason.clear();
    Q_EMIT inputChanged();
}

bool ChatModel::canSend() const {
    return isOpen() && !input().trimmed().isEmpty();
}

QString ChatModel::otherInputText() const {
    const auto theirs = m_inputs.theirs();
    if (!theirs)
        return {};
    QStringList lines;
    if (!theirs->input.text.isEmpty())
        lines << theirs->input.text;
    if (const auto count = theirs->input.parts.size())
        lines << u"（附件 %1 个）"_s.arg(count);
    if (theirs->input.selection)
        lines << u"（已选目标）"_s;
    return lines.join(u'\n');
}

QString ChatModel::retryTarget() const {
    return m_inputs.current().retryMessageId.value_or(QString());
}

QString ChatModel::retryTargetText() const {
    return retryTarget().isEmpty() ? QString() : ConversationTexts::retryRunning();
}

bool ChatModel::localInputSaved() const {
    return m_inputs.isKept() && (!m_session.unsaved() || m_session.incognito());
}

QCoro::Task<bool> ChatModel::preserve() {
    const QPointer self(this);
    const bool inputs = co_await m_inputs.keep();
    if (!self)
        co_return false;
    const bool conversation = co_await m_session.preserve();
    if (!self)
        co_return false;
    if (!conversation && !m_session.isSaving()) {
        setNotice(m_session.draftChangedElsewhere() ? ConversationTexts::draftChangedElsewhere()
                                                    : ConversationTexts::notKept());
        Q_EMIT conversationChanged();
    }
    co_return inputs &&conversation;
}

// What one does with a message

QStringList ChatModel::feedbackReasonTexts() const {
    return {u"不像我"_s, u"编造了内容"_s, u"时机不对"_s, u"太长了"_s, u"没说到点子上"_s, u"越界了"_s};
}

void ChatModel::copyText(const QString &text) {
    if (auto *clipboard = QGuiApplication::clipboard())
        clipboard->setText(text);
}

void ChatModel::copyMessage(const QString &messageId) {
    if (const auto *message = messageOf(messageId))
        copyText(message->text);
}

bool ChatModel::openLink(const QUrl &link) {
    const QString scheme = link.scheme();
    if (!link.isValid() || link.host().isEmpty() || (scheme != u"http"_s && scheme != u"https"_s))
        m_linkNotice = u"只打开 http 或 https 开头的链接，这个链接没有打开。"_s;
    else if (!m_services.opener->open(link))
        m_linkNotice = u"没有程序能打开这个链接："_s + PlainLabel::line(link.toString(), PlainLabel::longestSentence);
    else
        m_linkNotice.clear();
    Q_EMIT noticeChanged();
    return m_linkNotice.isEmpty();
}

} // namespace lmp
