#include "conversation/ConversationSession.h"

#include "conversation/ConversationTexts.h"
#include "core/Detach.h"
#include "core/PoolAwaiter.h"
#include "platform/Log.h"

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
                                         ConversationAccount account, const Clock &clock, QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
    , m_drafts(std::move(drafts))
    , m_account(std::move(account))
    , m_clock(clock) {
    m_files.setMaxThreadCount(1);
}

ConversationSession::~ConversationSession() {
    keep();
    m_files.waitForDone();
}

void ConversationSession::leave() {
    keep();
    ++m_generation;
    m_conversation.reset();
    m_draft = std::make_shared<std::optional<QString>>();
    m_incognito = m_conflicted = m_draftElsewhere = m_known = m_saving = m_saveAgain = false;
    m_edits = m_savedEdits = 0;
    m_userId = m_account.current();
    m_accountKey = m_account.key();
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
    leave();
    const auto generation = m_generation;
    Q_EMIT opened();
    if (!self || m_generation != generation)
        co_return notOpened(ConversationTexts::switchedAway());
    const auto draft = co_await PoolAwaiter(
        [drafts = m_drafts, user = m_userId, id, ours = m_draft] {
            auto read = drafts.read(user, id).value_or(std::nullopt);
            *ours = read ? std::optional(read->writeId) : std::nullopt;
            return read;
        },
        &m_files);
    if (!self || m_generation != generation)
        co_return notOpened(ConversationTexts::switchedAway());
    const auto answer = co_await m_service.load(id);
    if (!self || m_generation != generation || m_account.key() != m_accountKey)
        co_return notOpened(ConversationTexts::switchedAway());
    if (!answer && !(answer.error().status == 404 && draft))
        co_return std::unexpected(answer.error());
    // An id with '&' or '#' in it asks for another conversation than it names.
    if (answer && answer->conversation.id != id)
        co_return notOpened(ConversationTexts::anotherConversation());
    adopt(answer ? std::optional(answer->conversation) : std::nullopt, draft, copy);
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
    if (draft && !local && wanted == Copy::Local)
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

std::function<ConversationSession::Kept()> ConversationSession::keeping() const {
    return [drafts = m_drafts, user = m_userId, snapshot = *m_conversation, now = m_clock.now(), ours = m_draft] {
        auto kept = drafts.save(user, snapshot, *ours, now);
        if (kept)
            *ours = *kept;
        else if (kept.error().kind != ConversationDraftCache::CacheError::Kind::missingAccount)
            qCWarning(logConversation) << "a draft could not be kept";
        return kept;
    };
}

void ConversationSession::keep() {
    if (m_conversation && !m_incognito && unsaved())
        m_files.start([keep = keeping()] { (void)keep(); });
}

QCoro::Task<bool> ConversationSession::preserve() {
    if (!m_conversation || m_incognito || !unsaved())
        co_return true;
    const QPointer self(this);
    const auto generation = m_generation;
    // Behind what is being written already, so that the newest is what remains.
    const auto kept = co_await PoolAwaiter(keeping(), &m_files);
    if (self && m_generation == generation)
        m_draftElsewhere = isElsewhere(kept);
    co_return kept.has_value();
}

void ConversationSession::forgetDraft() {
    if (!m_conversation)
        return;
    m_files.start([drafts = m_drafts, user = m_userId, id = m_conversation->id, ours = m_draft] {
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
    m_files.start([keep = keeping(), drafts = m_drafts, user = m_userId, before, old] {
        if (keep() && *old)
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
            endSave({Saved::Where::Service, false, {}});
            co_return;
        }
        m_conflicted = !answer && answer.error().status == 409;
    }
    const auto kept = co_await PoolAwaiter(keeping(), &m_files);
    if (!self || m_generation != generation)
        co_return;
    m_draftElsewhere = isElsewhere(kept);
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
