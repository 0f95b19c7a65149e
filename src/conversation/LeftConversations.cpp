#include "conversation/LeftConversations.h"

#include "core/Detach.h"
#include "core/PoolAwaiter.h"
#include "platform/FileThread.h"

#include <QPointer>

#include <algorithm>

namespace lmp {

LeftConversations::LeftConversations(ConversationDraftCache drafts, Clock &clock, QObject *parent)
    : QObject(parent)
    , m_drafts(std::move(drafts))
    , m_clock(clock) {}

LeftConversations::~LeftConversations() {
    m_stop.request_stop();
    for (const Waiting &waiting : m_left)
        FileThread::pool().start(
            [drafts = m_drafts, left = waiting.left, now = m_clock.now()] { (void)write(drafts, left, now); });
}

LeftConversations::Kept LeftConversations::write(const ConversationDraftCache &drafts, const Left &left,
                                                 const QDateTime &now) {
    auto kept = drafts.save(left.user, left.snapshot, *left.draft, now);
    if (kept)
        *left.draft = *kept;
    else if (kept.error().kind != ConversationDraftCache::CacheError::Kind::missingAccount)
        qCWarning(logConversation) << "a draft could not be kept";
    return kept;
}

void LeftConversations::add(const Left &left) {
    remove(left.user, left.snapshot.id);
    m_left.push_back({left});
    detach(keepNow(), "keeping a conversation that was left");
}

std::optional<LeftConversations::Left> LeftConversations::find(const std::optional<QString> &user,
                                                               const QString &id) const {
    const auto found = std::ranges::find_if(
        m_left, [&](const Waiting &one) { return one.left.user == user && one.left.snapshot.id == id; });
    return found == m_left.end() ? std::nullopt : std::optional(found->left);
}

void LeftConversations::remove(const std::optional<QString> &user, const QString &id) {
    std::erase_if(m_left, [&](const Waiting &one) { return one.left.user == user && one.left.snapshot.id == id; });
    Q_EMIT refusedChanged();
}

QStringList LeftConversations::refused(const std::optional<QString> &user) const {
    QStringList titles;
    for (const Waiting &one : m_left) {
        if (one.refused && one.left.user == user)
            titles.push_back(one.left.snapshot.title);
    }
    return titles;
}

QCoro::Task<bool> LeftConversations::keep() {
    const QPointer self(this);
    const auto waiting = m_left;
    if (waiting.empty())
        co_return true;
    const auto done = co_await PoolAwaiter(
        [drafts = m_drafts, waiting, now = m_clock.now()] {
            std::vector<bool> written;
            for (const Waiting &one : waiting)
                written.push_back(write(drafts, one.left, now).has_value());
            return written;
        },
        &FileThread::pool());
    for (std::size_t i = 0; self && i < done.size(); ++i) {
        const Left &left = waiting[i].left;
        // It may have been opened again meanwhile, or left once more with more in it.
        const auto one = std::ranges::find_if(m_left, [&](const Waiting &other) {
            return other.left.draft == left.draft && other.left.edits == left.edits;
        });
        if (one != m_left.end() && done[i])
            m_left.erase(one);
        else if (one != m_left.end())
            one->refused = true;
        if (done[i])
            Q_EMIT kept(left.snapshot.id, left.edits);
    }
    if (self)
        Q_EMIT refusedChanged();
    co_return std::ranges::all_of(done, std::identity());
}

QCoro::Task<> LeftConversations::keepNow() {
    const QPointer self(this);
    const bool kept = co_await keep();
    if (self && !kept && !m_retryWaits)
        detach(retry(), "keeping a conversation that was left");
}

QCoro::Task<> LeftConversations::retry() {
    const QPointer self(this);
    m_retryWaits = true;
    while (!m_left.empty()) {
        co_await m_clock.sleep(retryPause, m_stop.get_token());
        if (!self || m_stop.stop_requested())
            co_return;
        co_await keep();
        if (!self)
            co_return;
    }
    m_retryWaits = false;
}

} // namespace lmp
