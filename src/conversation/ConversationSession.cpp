#include "conversation/ConversationSession.h"

#include "conversation/ConversationTexts.h"
#include "core/Detach.h"
#include "core/PoolAwaiter.h"
#include "platform/FileThread.h"

#include <QHash>
#include <QPointer>
#include <QUuid>

#include <algorithm>

namespace lmp {

namespace {

std::unexpected<APIError> notOpened(const QString &reason) {
    APIError error;
    error.reason = reason;
    return std::unexpected(error);
}

/// Whether the service's copy holds everything that the draft holds: the draft's save arrived, only its answer did not.
bool holdsAll(const ConversationDTO &copy, const ConversationDTO &draft) {
    QHash<QString, const ConvMessageDTO *> byId;
    for (const ConvMessageDTO &message : copy.messages)
        byId.insert(message.id, &message);
    const bool messages = std::ranges::all_of(draft.messages, [&](const ConvMessageDTO &message) {
        const auto *there = byId.value(message.id);
        return there && there->role == message.role && there->text == message.text;
    });
    return messages && (!draft.workspace || draft.workspace == copy.workspace);
}

bool isElsewhere(const ConversationDraftCache::Outcome<QString> &kept) {
    return !kept && kept.error().kind == ConversationDraftCache::CacheError::Kind::changedElsewhere;
}

} // namespace

ConversationSession::ConversationSession(ConversationService service, ConversationDraftCache drafts,
                                         ConversationAccount account, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
    , m_drafts(std::move(drafts))
    , m_account(std::move(account))
    , m_clock(clock)
    , m_left(m_drafts, clock) {
    connect(&m_left, &LeftConversations::kept, this, &ConversationSession::secured);
}

ConversationSession::~ConversationSession() {
    m_stop.request_stop();
    // What is written must not come back here.
    if (m_conversation && !m_incognito && unsaved())
        FileThread::pool().start([drafts = m_drafts, open = snapshot(), now = m_clock.now()] {
            (void)LeftConversations::write(drafts, open, now);
        });
}

LeftConversations::Left ConversationSession::snapshot() const {
    return {.user = m_userId, .snapshot = *m_conversation, .draft = m_draft, .edits = m_edits};
}

void ConversationSession::leave() {
    // For nobody nothing can be kept, and nobody could open it again.
    if (m_conversation && !m_incognito && m_userId && unsaved() && m_keptEdits != m_edits)
        m_left.add(snapshot());
    ++m_generation;
    m_conversation.reset();
    m_draft = std::make_shared<std::optional<QString>>();
    m_draftUnread.reset();
    m_incognito = m_conflicted = m_draftElsewhere = m_known = m_saving = m_saveAgain = false;
    m_savedEdits = m_keptEdits = m_edits;
    m_userId = m_account.current();
    m_accountKey = m_account.key();
}

void ConversationSession::knowOwner() {
    if (m_userId)
        return;
    m_userId = m_account.current();
    m_accountKey = m_account.key();
    keep();
}

void ConversationSession::begin(std::optional<QString> mode, bool incognito) {
    leave();
    m_incognito = incognito;
    m_conversation.emplace();
    m_conversation->id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    m_conversation->mode = std::move(mode);
    Q_EMIT opened();
}

void ConversationSession::close() {
    leave();
    Q_EMIT opened();
}

QCoro::Task<Result<void>> ConversationSession::load(QString id, Copy copy) {
    const QPointer self(this);
    const auto before = m_conversation && m_conversation->id == id ? m_draft : nullptr;
    leave();
    const auto generation = m_generation;
    Q_EMIT opened();
    if (!self || m_generation != generation)
        co_return notOpened(ConversationTexts::switchedAway());
    // What the disk has refused is newer than what the disk has.
    const auto left = m_left.find(m_userId, id);
    std::optional<ConversationDraftCache::Entry> draft;
    const auto seen = std::make_shared<bool>(left.has_value());
    if (left) {
        m_draft = left->draft;
        draft.emplace().snapshot = left->snapshot;
    } else {
        auto read = co_await PoolAwaiter(
            [drafts = m_drafts, user = m_userId, id, ours = m_draft, before, seen] {
                auto there = drafts.read(user, id);
                *seen = before && *before && there && *there && **before == (*there)->writeId;
                *ours = there && *there ? std::optional((*there)->writeId) : std::nullopt;
                return there;
            },
            &FileThread::pool());
        if (!self || m_generation != generation)
            co_return notOpened(ConversationTexts::switchedAway());
        if (read)
            draft = *std::move(read);
        else if (m_userId)
            m_draftUnread = read.error().reason;
    }
    const auto answer = co_await m_service.load(id);
    if (!self || m_generation != generation || m_account.key() != m_accountKey)
        co_return notOpened(ConversationTexts::switchedAway());
    if (!answer && !(answer.error().status == 404 && draft))
        co_return std::unexpected(answer.error());
    // An id with '&' or '#' in it asks for another conversation than it names.
    if (answer && answer->conversation.id != id)
        co_return notOpened(ConversationTexts::anotherConversation());
    // Another window may have gone on with it since: only what was in sight here is anybody's to give up.
    if (draft && !*seen)
        copy = Copy::Local;
    adopt(answer ? std::optional(answer->conversation) : std::nullopt, draft, copy);
    m_left.remove(m_userId, id);
    if (!self || m_generation != generation)
        co_return notOpened(ConversationTexts::switchedAway());
    Q_EMIT opened();
    co_return Result<void>();
}

void ConversationSession::adopt(const std::optional<ConversationDTO> &copy,
                                const std::optional<ConversationDraftCache::Entry> &draft, Copy wanted) {
    m_known = copy.has_value();
    const bool local = draft && (!copy || (wanted == Copy::Local && !holdsAll(*copy, draft->snapshot)));
    m_conversation = local ? draft->snapshot : *copy;
    m_conflicted = local && copy && copy->revision != draft->snapshot.revision;
    m_edits += local;
    if (draft && !local)
        forgetDraft();
    m_edits += ConversationMessageDelivery::recover(*m_conversation);
}

bool ConversationSession::holds(const ConversationMessageDelivery::Reference &reference) const {
    return belongsToCurrentAccount() && reference.accountId == m_accountKey &&
           reference.conversationId == m_conversation->id &&
           ConversationMessageDelivery::find(std::as_const(*m_conversation), reference.messageId);
}

ConversationMessageDelivery::Reference ConversationSession::referenceTo(const QString &messageId) const {
    return {m_accountKey, m_conversation ? m_conversation->id : QString(), messageId};
}

void ConversationSession::edit(const std::function<void(ConversationDTO &)> &change) {
    if (!m_conversation)
        return;
    change(*m_conversation);
    ++m_edits;
    Q_EMIT changed();
}

void ConversationSession::appendText(const QString &messageId, const QString &text) {
    auto *message = m_conversation ? ConversationMessageDelivery::find(*m_conversation, messageId) : nullptr;
    if (!message)
        return;
    message->text += text;
    ++m_edits;
}

QCoro::Task<ConversationSession::Kept> ConversationSession::write() {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto open = snapshot();
    // Behind what is being written already, so that the newest is what remains.
    const auto kept = co_await PoolAwaiter(
        [drafts = m_drafts, open, now = m_clock.now()] { return LeftConversations::write(drafts, open, now); },
        &FileThread::pool());
    if (!self)
        co_return kept;
    const bool current = m_generation == generation;
    if (current) {
        m_draftElsewhere = isElsewhere(kept);
        m_keptEdits = kept ? std::max(m_keptEdits, open.edits) : m_keptEdits;
    }
    if (current && !kept && !m_draftElsewhere)
        keepSoon();
    if (kept)
        Q_EMIT secured(open.snapshot.id, open.edits);
    else if (current)
        Q_EMIT refused();
    co_return kept;
}

void ConversationSession::keep() {
    if (m_conversation && !m_incognito && unsaved())
        detach(keepOnce(), "keeping a conversation");
}

QCoro::Task<> ConversationSession::keepOnce() {
    co_await write();
}

void ConversationSession::keepSoon() {
    if (!m_keepWaits && m_conversation && !m_incognito)
        detach(keepAfterPause(), "keeping a conversation");
}

QCoro::Task<> ConversationSession::keepAfterPause() {
    const QPointer self(this);
    m_keepWaits = true;
    co_await m_clock.sleep(LeftConversations::retryPause, m_stop.get_token());
    if (!self || m_stop.stop_requested())
        co_return;
    m_keepWaits = false;
    if (m_keptEdits != m_edits)
        keep();
}

QCoro::Task<bool> ConversationSession::preserve() {
    const QPointer self(this);
    const bool left = co_await m_left.keep();
    if (!self || !m_conversation || m_incognito || !unsaved())
        co_return left;
    const auto kept = co_await write();
    co_return left &&kept;
}

void ConversationSession::forgetDraft() {
    if (!m_conversation)
        return;
    FileThread::pool().start([drafts = m_drafts, user = m_userId, id = m_conversation->id, ours = m_draft] {
        if (!*ours)
            return;
        if (drafts.remove(user, id, **ours))
            ours->reset();
        else
            qCWarning(logConversation) << "a draft that is not needed any more could not be removed";
    });
}

void ConversationSession::saveAsNew() {
    if (!m_conversation || m_incognito)
        return;
    ++m_generation;
    const QString before = m_conversation->id;
    const auto old = std::exchange(m_draft, std::make_shared<std::optional<QString>>());
    m_conversation->id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    m_conversation->title += ConversationTexts::copyMark();
    m_conversation->revision.reset();
    m_conflicted = m_draftElsewhere = m_known = m_saving = m_saveAgain = false;
    ++m_edits;
    // What it was kept as before goes only once it is kept anew.
    FileThread::pool().start([drafts = m_drafts, open = snapshot(), now = m_clock.now(), user = m_userId, before, old] {
        if (LeftConversations::write(drafts, open, now) && *old)
            (void)drafts.remove(user, before, **old);
    });
    const QPointer self(this);
    Q_EMIT opened();
    if (self)
        save();
}

void ConversationSession::save() {
    if (m_saving) {
        m_saveAgain = true;
        return;
    }
    m_saving = true;
    detach(saveOnce(), "saving a conversation");
}

QCoro::Task<> ConversationSession::saveOnce() {
    const QPointer self(this);
    const auto generation = m_generation;
    m_saveAgain = false;
    if (!m_conversation || m_incognito || !unsaved()) {
        endSave({});
        co_return;
    }
    // The request carries whatever token is current, so it must be the owner's.
    if (!m_conflicted && belongsToCurrentAccount()) {
        const auto edits = m_edits;
        const auto answer = co_await m_service.sync(*m_conversation);
        if (!self || m_generation != generation)
            co_return;
        if (answer && answer->ok) {
            settle(edits, answer->revision);
            if (!self || m_generation != generation)
                co_return;
            endSave({Saved::Where::Service, false, {}});
            co_return;
        }
        m_conflicted = !answer && answer.error().status == 409;
    }
    const auto kept = co_await write();
    if (!self || m_generation != generation)
        co_return;
    auto text = m_conflicted ? (kept ? ConversationTexts::conflict() : ConversationTexts::conflictNotKept())
                             : (kept ? ConversationTexts::notSynchronised() : ConversationTexts::notKept());
    if (m_draftElsewhere)
        text = kept.error().reason;
    endSave({kept ? Saved::Where::Local : Saved::Where::Lost, m_conflicted, text});
}

void ConversationSession::settle(quint64 edits, std::optional<qint64> revision) {
    if (revision)
        m_conversation->revision = revision;
    m_known = true;
    m_savedEdits = edits;
    m_draftElsewhere = false;
    // What has changed since is kept on top of the new revision, not of the old one.
    if (unsaved())
        keep();
    else
        forgetDraft();
    Q_EMIT secured(m_conversation->id, edits);
}

void ConversationSession::endSave(const Saved &saved) {
    // Through the event loop, so that whoever asked for the save is back before it hears of its end.
    QMetaObject::invokeMethod(
        this,
        [this, saved, generation = m_generation] {
            if (m_generation != generation)
                return;
            if (m_saveAgain) {
                detach(saveOnce(), "saving a conversation");
                return;
            }
            m_saving = false;
            Q_EMIT saveEnded(saved);
        },
        Qt::QueuedConnection);
}

} // namespace lmp
