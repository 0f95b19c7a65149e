#include "screens/chat/ChatModel.h"

#include "app/Application.h"
#include "conversation/ConversationSearch.h"
#include "conversation/ConversationTexts.h"
#include "core/Detach.h"
#include "core/PlainLabel.h"

#include <QPointer>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;
using Copy = ConversationSession::Copy;

namespace {

QString pip(std::optional<qint64> amount) {
    return amount ? QString::number(*amount) + u" Pip"_s : u"—"_s;
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
    , m_deeds(m_session, m_view, m_services.opener)
    , m_find(m_session)
    , m_speech(m_session, m_services.api, m_services.makeAudio)
    , m_extraction(
          m_services.api, m_session, [this] { return isIdle(); }, m_services.extractions)
    , m_inputs(m_services.inputs, *m_services.clock)
    , m_retry(m_session, m_view, m_messages, m_inputs)
    , m_stopNote(*m_services.clock)
    , m_owner(m_services.account.owner())
    , m_user(m_services.account.current())
    , m_signIn(m_services.account.signIn()) {
    m_view.surface = u"chat"_s;
    connect(&m_session, &ConversationSession::opened, this, &ChatModel::onOpened);
    connect(&m_session, &ConversationSession::saveEnded, this, &ChatModel::onSaveEnded);
    connect(&m_session, &ConversationSession::secured, this, &ChatModel::onSecured);
    connect(&m_session, &ConversationSession::refused, this, &ChatModel::onRefused);
    connect(&m_session.left(), &LeftConversations::refusedChanged, this, &ChatModel::onLeft);
    connect(&m_view, &ChatWithTwinView::stateChanged, this, &ChatModel::onViewChanged);
    connect(&m_view, &ChatWithTwinView::turnCompleted, this, &ChatModel::onTurnEnded);
    connect(&m_view, &ChatWithTwinView::turnFailed, this, &ChatModel::onTurnEnded);
    connect(&m_stopNote, &StopNote::read, this, &ChatModel::stateChanged);
    connect(&m_retry, &ChatRetry::inputChanged, this, &ChatModel::inputChanged);
    connect(&m_retry, &ChatRetry::held, this, &ChatModel::hold);
    connect(&m_retry, &ChatRetry::sent, this, &ChatModel::sent);
    connect(&m_retry, &ChatRetry::answered, this, &ChatModel::emptyBox);
    connect(&m_inputs, &ComposerInputs::replaced, this, &ChatModel::inputChanged);
    connect(&m_inputs, &ComposerInputs::stateChanged, this, &ChatModel::goOnTyping);
    connect(&m_inputs, &ComposerInputs::kept, this, &ChatModel::draftsChanged);
    m_inputs.open(m_services.account.current());
    if (m_services.search)
        m_services.search->follow(&m_session);
}

ChatModel::~ChatModel() {
    // What the members say while they go is for nobody.
    m_session.disconnect(this);
    m_session.left().disconnect(this);
    m_view.disconnect(this);
    m_inputs.disconnect(this);
    m_retry.disconnect(this);
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
    // Titles are seen where nobody asked for the words: in task bars, and on shared screens.
    if (m_session.incognito())
        return u"无痕对话"_s;
    const QString title = PlainLabel::line(conversation->title);
    return title.isEmpty() ? u"新对话"_s : title;
}

QString ChatModel::incognitoText() const {
    return ConversationTexts::incognitoBanner();
}

bool ChatModel::losesIncognito() const {
    return isOpen() && incognito() && (m_messages.rowCount() > 0 || !input().trimmed().isEmpty());
}

void ChatModel::begin(bool incognito) {
    const auto *open = m_session.belongsToCurrentAccount() ? m_session.conversation() : nullptr;
    if (open && open->messages.isEmpty() && !m_session.known() && m_session.incognito() == incognito)
        return;
    letGo();
    forgetOpening();
    m_session.begin({}, incognito);
    m_inputs.moveTo(place());
    Q_EMIT conversationChanged();
}

void ChatModel::goOn() {
    begin();
    m_goesOn = true;
    goOnTyping();
}

void ChatModel::goOnTyping() {
    const auto &restored = m_inputs.restoredDraftAccount();
    if (!m_goesOn || !restored || restored != m_services.account.current())
        return;
    m_goesOn = false;
    // Whoever composes has begun to write here.
    const QString before = input();
    Q_EMIT leaving();
    if (input() == before)
        load(m_inputs.typedLater());
}

void ChatModel::load(const QString &id) {
    if (id.isEmpty() || (id == conversationId() && m_loadError.isEmpty()))
        return;
    if (m_inputs.isFresh(id))
        beginWith(id);
    else
        openAs(id, Copy::Local);
}

void ChatModel::beginWith(const QString &id) {
    letGo();
    forgetOpening();
    m_inputs.moveTo({.id = id});
    m_session.begin();
    m_inputs.moveTo(place(), true);
    m_retry.dropStale();
    Q_EMIT conversationChanged();
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

void ChatModel::reopen() {
    if (isOpen() && isIdle() && m_session.known())
        openAs(conversationId(), Copy::Local);
}

void ChatModel::openServiceCopy() {
    if (conflicted())
        openAs(conversationId(), Copy::Service);
}

void ChatModel::openAs(const QString &id, Copy copy) {
    letGo();
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
    // Nobody has the conversation any more, and what was typed for it may still be here.
    const bool gone = !opened && opened.error().status == 404;
    if (gone)
        co_await ComposerInputs::looked();
    if (!self || m_loads != loads)
        co_return;
    m_loading = false;
    if (gone && !m_inputs.current().isEmpty()) {
        beginWith(id);
        setNotice(ConversationTexts::inputCarriedOver());
        co_return;
    }
    if (!opened) {
        m_loadError = opened.error().reason;
        Q_EMIT conversationChanged();
        co_return;
    }
    m_inputs.describe(place());
    m_retry.dropStale();
    Q_EMIT conversationChanged();
    if (self && m_loads == loads && m_whenOpened)
        std::exchange(m_whenOpened, nullptr)();
    if (!self || m_loads != loads)
        co_return;
    const QString unread = m_session.draftUnread().value_or(QString());
    setNotice(unread);
    if (!self || m_loads != loads || !m_session.unsaved())
        co_return;
    // Whether it is saved again is the person's word: the save before may have arrived.
    const bool conflict = m_session.conflicted();
    const bool kept = co_await m_session.preserve();
    if (!self || m_loads != loads || !m_session.unsaved() || m_session.isSaving())
        co_return;
    QString text = kept ? ConversationTexts::notSynchronised() : ConversationTexts::notKept();
    if (conflict)
        text = kept ? ConversationTexts::conflict() : ConversationTexts::conflictNotKept();
    setNotice(unread.isEmpty() ? text : unread + u'\n' + text);
}

void ChatModel::letGo() {
    Q_EMIT leaving();
    // What has arrived is saved with its conversation, which would otherwise be left as if nobody had answered.
    if (sending())
        stop();
}

void ChatModel::forgetOpening() {
    ++m_loads;
    m_loading = m_goesOn = false;
    m_loadError.clear();
    m_wantedId.clear();
    m_heldReason.clear();
    m_deeds.closeLinkNotice();
    setNotice({});
    m_whenOpened = nullptr;
}

void ChatModel::onOpened() {
    m_retry.onOpened();
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
    for (Sent &sent : m_sent) {
        if (sent.conversation == before)
            sent.conversation = conversationId();
    }
    m_inputs.moveTo(place(), true);
    Q_EMIT conversationChanged();
    if (self)
        Q_EMIT draftsChanged();
}

void ChatModel::onSaveEnded(const ConversationSession::Saved &saved) {
    const QPointer self(this);
    m_inputs.describe(place());
    setNotice(saved.text.value_or(QString()));
    m_retry.onSaveEnded();
    Q_EMIT conversationChanged();
    if (self && saved.where == ConversationSession::Saved::Where::Service)
        Q_EMIT this->saved();
    else if (self)
        Q_EMIT draftsChanged();
}

void ChatModel::onSecured(const QString &conversationId, quint64 edits) {
    // What was sent stands in its message from now on, and need not stand in the box's file any more.
    const auto isSafe = [&](const Sent &sent) {
        return sent.conversation == conversationId && sent.edits <= edits;
    };
    QList<Sent> safe;
    std::ranges::copy_if(m_sent, std::back_inserter(safe), isSafe);
    m_sent.removeIf(isSafe);
    for (const Sent &sent : std::as_const(safe))
        m_inputs.release(sent.box, sent.edits);
    if (m_notice == ConversationTexts::notKept() && conversationId == this->conversationId() && m_session.unsaved())
        setNotice(ConversationTexts::notSynchronised());
}

void ChatModel::onRefused() {
    // The end of a save tells it too, and what the service said.
    if (m_session.isSaving())
        return;
    const QPointer self(this);
    setNotice(m_session.draftChangedElsewhere() ? ConversationTexts::draftChangedElsewhere()
                                                : ConversationTexts::notKept());
    if (self)
        Q_EMIT conversationChanged();
}

void ChatModel::onLeft() {
    QStringList titles = m_session.left().refused(m_services.account.current());
    for (QString &title : titles)
        title = PlainLabel::line(title);
    const QString notice = titles.isEmpty() ? QString() : ConversationTexts::leftNotKept(titles);
    if (std::exchange(m_leftNotice, notice) != notice)
        Q_EMIT noticeChanged();
}

void ChatModel::emptyBox() {
    if (m_session.incognito()) {
        m_inputs.clear();
        return;
    }
    m_sent.push_back({conversationId(), conversationId(), m_session.edits()});
    m_inputs.hold(m_session.edits());
    if (!m_session.unsaved())
        onSecured(conversationId(), m_session.edits());
}

void ChatModel::setNotice(const QString &notice) {
    if (std::exchange(m_notice, notice) != notice)
        Q_EMIT noticeChanged();
}

bool ChatModel::neverAtService() const {
    const ConversationDTO *conversation = m_session.conversation();
    return !m_session.known() && !(conversation && conversation->revision);
}

QString ChatModel::notice() const {
    QStringList notices{m_notice, m_leftNotice};
    notices.removeAll(QString());
    return notices.join(u'\n');
}

void ChatModel::closeNotice() {
    m_leftNotice.clear();
    setNotice({});
    Q_EMIT noticeChanged();
}

void ChatModel::recheckAccount() {
    const QString owner = m_services.account.owner();
    if (std::exchange(m_owner, owner) == owner)
        return;
    const QPointer self(this);
    const auto before = std::exchange(m_user, m_services.account.current());
    const QString signIn = std::exchange(m_signIn, m_services.account.signIn());
    if (!before && m_user && signIn == m_signIn) {
        // It was typed, and perhaps sent, before it was known by whom.
        m_session.knowOwner();
        m_view.knowOwner();
        m_inputs.open(m_user, true);
        onLeft();
        return;
    }
    forgetOpening();
    Q_EMIT leaving();
    m_inputs.open(m_user);
    m_session.close();
    if (!self)
        return;
    m_deeds.forget();
    onLeft();
    Q_EMIT conversationChanged();
}

// The turn

void ChatModel::onViewChanged() {
    if (m_services.search)
        m_services.search->holdBack(this, sending());
    // What held it back is over, and what came of that stands in the same place.
    if (isIdle() && m_heldReason == ConversationTexts::heldByReply())
        hold({});
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
        return m_retry.send();
    const auto reference = m_view.send(input());
    if (!reference) {
        hold(reference.error());
        return false;
    }
    m_inputs.describe(place());
    emptyBox();
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
    m_stopNote.reset();
    if (outcome.stopped) {
        m_messages.setStopped(row);
        // Without a reply there is no row that says it from then on.
        if (row != outcome.reference.messageId)
            m_stopNote.begin();
    } else
        m_messages.setError(row, outcome.reason ? *outcome.reason : outcome.notice.value_or(QString()));
    // Of a refused turn nothing was charged, and nothing is claimed.
    if (outcome.charged || outcome.state != ConversationDeliveryState::failed)
        m_messages.setCharge(row, pip(outcome.charged));
}

QString ChatModel::errorText() const {
    const QString text = m_view.errorText().value_or(QString());
    return m_stopNote.wasRead() && text == ConversationTexts::stopped() ? QString() : text;
}

// Another answer

bool ChatModel::retryMessage(const QString &userMessageId, const QString &edited) {
    m_heldReason.clear();
    return m_retry.askEdited(userMessageId, edited);
}

// The input

QString ChatModel::input() const {
    return m_inputs.current().text;
}

void ChatModel::setInput(const QString &text) {
    if (text == input())
        return;
    m_goesOn = false;
    m_inputs.setText(text);
    m_retry.onEdited();
    if (isIdle())
        m_heldReason.clear();
    Q_EMIT inputChanged();
}

bool ChatModel::canSend() const {
    return isOpen() && !input().trimmed().isEmpty();
}

QString ChatModel::retryTargetText() const {
    return retryTarget().isEmpty() ? QString() : ConversationTexts::retryRunning();
}

bool ChatModel::localInputSaved() const {
    return m_inputs.isKept() && m_session.left().isEmpty() && (!m_session.unsaved() || m_session.incognito());
}

QCoro::Task<bool> ChatModel::preserve() {
    const QPointer self(this);
    // First the messages: what was sent stays in its box's file until its message is safe.
    const bool conversation = co_await m_session.preserve();
    const bool inputs = self && co_await m_inputs.keep();
    co_return inputs &&conversation;
}

} // namespace lmp
