#include "conversation/ConversationSearch.h"

#include "conversation/ConversationSession.h"
#include "core/Detach.h"
#include "core/PoolAwaiter.h"

#include <QCryptographicHash>
#include <QFile>

#include <algorithm>
#include <sys/stat.h>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto pauseBetween = 300ms;
constexpr int mostFailures = 3; ///< in a row, before it is left for another time
constexpr int mostRestarts = 3; ///< a disk that damages every file is not written to for ever

} // namespace

QString ConversationSearch::Coverage::text() const {
    if (complete())
        return {};
    if (!known)
        return trouble.isEmpty() ? u"还不知道一共有多少段对话，找到的可能不全。"_s : trouble;
    const QString sofar = u"已收录 %1 / %2 段对话"_s.arg(indexed).arg(total);
    if (!trouble.isEmpty())
        return sofar + u"。"_s + trouble;
    return working ? sofar + u"，其余正在后台收录。"_s : sofar + u"，其余还没有收录。"_s;
}

ConversationSearch::ConversationSearch(ConversationService service, ConversationDraftCache drafts,
                                       ConversationAccount account, ApplicationSupport support, QString scope,
                                       Clock &clock, QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
    , m_drafts(std::move(drafts))
    , m_account(std::move(account))
    , m_support(std::move(support))
    , m_scope(std::move(scope))
    , m_clock(clock)
    , m_owner(m_account.owner()) {
    open();
}

ConversationSearch::~ConversationSearch() {
    m_stop.request_stop();
    m_pool.waitForDone();
}

template <class F>
auto ConversationSearch::onIndex(F work) {
    return PoolAwaiter([index = m_index, work = std::move(work)] { return work(*index); }, &m_pool);
}

void ConversationSearch::open() {
    const auto account = m_account.current();
    const auto folder = account ? m_support.folder(folderName.toString()) : std::nullopt;
    m_index.reset();
    if (!folder)
        return;
    // Only the names of the files would show, and those are nobody else's business either.
    (void)::chmod(QFile::encodeName(*folder).constData(), S_IRWXU);
    const QByteArray key = Json::encode(QList<QString>{m_scope, *account});
    const QString name = QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex());
    m_index = std::make_shared<ConversationSearchIndex>(*folder + u'/' + name + u".sqlite"_s);
}

void ConversationSearch::recheckAccount() {
    const QString now = m_account.owner();
    if (std::exchange(m_owner, now) == now)
        return;
    ++m_generation;
    m_stop.request_stop();
    m_stop = std::stop_source();
    m_waiting.clear();
    m_fresh.clear();
    m_forgotten.clear();
    m_known.clear();
    m_missing.clear();
    m_wanted.clear();
    m_coverage = {};
    m_feeding = m_tidying = m_again = false;
    m_restarts = 0;
    open();
    Q_EMIT accountChanged();
    Q_EMIT coverageChanged();
}

// Looking

QCoro::Task<std::expected<ConversationSearch::Page, QString>>
ConversationSearch::find(QString typed, std::optional<qint64> below, qsizetype limit, std::stop_token stop) {
    const QPointer self(this);
    recheckAccount();
    const auto generation = m_generation;
    if (!m_account.current())
        co_return std::unexpected(u"登录后才能查找对话。"_s);
    if (!m_index)
        co_return std::unexpected(u"这台电脑上没有地方放查找用的索引，暂时不能查找。"_s);
    const SearchTerms terms(typed);
    for (int attempt = 0; attempt < 2; ++attempt) {
        auto page = co_await look(terms, below, limit, stop);
        if (!self || m_generation != generation)
            co_return Page();
        recheckAccount();
        if (m_generation != generation)
            co_return Page();
        if (page) {
            // What could not be taken out of a busy file yet.
            page->hits.removeIf(
                [&](const ConversationSearchHit &hit) { return m_forgotten.contains(hit.conversationId); });
            co_return *std::move(page);
        }
        if (page.error() == Fault::storage)
            break;
        co_await startAgain();
        if (!self || m_generation != generation)
            co_return Page();
    }
    co_return std::unexpected(u"查找用的索引暂时读不了，请稍后再试。"_s);
}

QCoro::Task<std::expected<ConversationSearch::Page, ConversationSearch::Fault>>
ConversationSearch::look(SearchTerms terms, std::optional<qint64> below, qsizetype limit, std::stop_token stop) {
    const QPointer self(this);
    const auto generation = m_generation;
    Page all;
    do {
        // One after another, so that other work comes in between, and the end of the program.
        const qsizetype room = limit - all.hits.size();
        const auto page = co_await onIndex(
            [terms, below, room](ConversationSearchIndex &index) { return index.find(terms, below, room); });
        if (!page)
            co_return std::unexpected(page.error());
        all.hits += page->hits;
        all.total += page->total;
        all.totalIsAtLeast = page->totalIsAtLeast;
        all.more = page->more;
        all.reached = page->reached;
        below = page->reached;
    } while (self && m_generation == generation && all.more && all.hits.size() < limit && !stop.stop_requested());
    co_return all;
}

QCoro::Task<> ConversationSearch::startAgain() {
    const QPointer self(this);
    const auto generation = m_generation;
    // Before the file goes: nobody is told that everything was looked through when nothing was.
    m_missing = m_known;
    m_coverage.known = false;
    count();
    if (!self || m_generation != generation)
        co_return;
    co_await onIndex([](ConversationSearchIndex &index) {
        index.discard();
        return true;
    });
    if (!self || m_generation != generation)
        co_return;
    m_again = ++m_restarts <= mostRestarts;
    if (m_again)
        refresh();
    else
        setTrouble(u"查找用的索引反复损坏，这次先不再重建。"_s);
}

// What is opened and saved

void ConversationSearch::follow(ConversationSession *session) {
    const auto look = [this, session] {
        take(*session);
    };
    connect(session, &ConversationSession::opened, this, look);
    connect(session, &ConversationSession::saveEnded, this, look);
    take(*session);
}

void ConversationSearch::take(const ConversationSession &session) {
    recheckAccount();
    const auto *conversation = session.conversation();
    if (!conversation || !m_index || !session.belongsToCurrentAccount())
        return;
    if (session.incognito()) {
        forget(conversation->id);
        return;
    }
    if (conversation->messages.isEmpty() || m_forgotten.contains(conversation->id))
        return;
    m_fresh.insert(conversation->id);
    m_waiting.insert(conversation->id, *conversation);
    if (!m_feeding)
        detach(feed(), "indexing a conversation");
}

QCoro::Task<> ConversationSearch::feed() {
    const QPointer self(this);
    const auto generation = m_generation;
    m_feeding = true;
    while (!m_waiting.isEmpty()) {
        const ConversationDTO conversation = m_waiting.take(m_waiting.cbegin().key());
        co_await put(conversation, Age::latest, true);
        if (!self || m_generation != generation)
            co_return;
    }
    m_feeding = false;
}

QCoro::Task<bool> ConversationSearch::put(ConversationDTO conversation, Age age, bool live) {
    const QPointer self(this);
    const auto generation = m_generation;
    while (!m_forgotten.contains(conversation.id) && (live || mayFetch(conversation.id))) {
        const auto done = co_await onIndex(
            [conversation, age](ConversationSearchIndex &index) { return index.put(conversation, age); });
        if (!self || m_generation != generation)
            co_return false;
        if (!done && done.error() == Fault::damaged)
            co_await startAgain();
        else if (!done)
            setTrouble(u"查找用的索引暂时写不进去（磁盘满了或不允许写）。"_s);
        if (!done || !self || m_generation != generation)
            co_return false;
        if (*done) {
            settle(conversation.id);
            co_return true;
        }
    }
    co_return true;
}

void ConversationSearch::settle(const QString &id) {
    m_known.insert(id);
    m_missing.remove(id);
    count();
}

void ConversationSearch::forget(const QString &conversationId) {
    // An incognito chat says so at every turn.
    if (m_forgotten.contains(conversationId))
        return;
    m_forgotten.insert(conversationId);
    m_waiting.remove(conversationId);
    m_fresh.remove(conversationId);
    m_known.remove(conversationId);
    m_missing.remove(conversationId);
    if (m_index)
        detach(removeNow(conversationId), "removing a conversation from the search");
    count();
}

QCoro::Task<> ConversationSearch::removeNow(QString id) {
    const QPointer self(this);
    const auto generation = m_generation;
    enum class Removal { NotThere, Removed, NotYet, Discarded };
    const auto removal = co_await onIndex([id](ConversationSearchIndex &index) {
        const auto there = index.holds(id);
        if (there && !*there)
            return Removal::NotThere;
        if (there && index.remove(id))
            return Removal::Removed;
        // Whether it is there cannot be asked now: the next comparison takes it out.
        if (!there && there.error() == Fault::storage)
            return Removal::NotYet;
        index.discard(); // Rather nothing than what must not be there.
        return Removal::Discarded;
    });
    if (!self || m_generation != generation)
        co_return;
    if (removal == Removal::Discarded)
        co_await startAgain();
    else if (removal == Removal::Removed)
        co_await tidy(pauseBetween);
}

QCoro::Task<> ConversationSearch::tidy(std::chrono::milliseconds pause) {
    const QPointer self(this);
    const auto generation = m_generation;
    if (std::exchange(m_tidying, true))
        co_return;
    for (bool more = true; more;) {
        const auto done = co_await onIndex([](ConversationSearchIndex &index) { return index.tidy(); });
        if (!self || m_generation != generation)
            co_return;
        more = done && !*done;
        const bool on = !more || co_await idle(pause);
        if (!self || m_generation != generation)
            co_return;
        more = more && on;
    }
    m_tidying = false;
}

// What is missing

void ConversationSearch::refresh() {
    recheckAccount();
    if (m_coverage.working || !m_index)
        return;
    detach(fetchAll(pauseBetween), "reading conversations for the search");
}

QCoro::Task<> ConversationSearch::catchUp() {
    recheckAccount();
    if (m_coverage.working || !m_index)
        co_return;
    co_await fetchAll(0ms);
}

QCoro::Task<> ConversationSearch::fetchAll(std::chrono::milliseconds pause) {
    const QPointer self(this);
    const auto generation = m_generation;
    m_coverage.working = true;
    m_coverage.trouble.clear();
    Q_EMIT coverageChanged();
    if (!self || m_generation != generation)
        co_return;
    int failures = 0;
    do {
        m_again = false;
        failures = co_await fetchWanted(pause);
        if (!self || m_generation != generation)
            co_return;
    } while (m_again);
    co_await tidy(pause);
    if (!self || m_generation != generation)
        co_return;
    m_coverage.working = false;
    if (failures > 0)
        m_coverage.trouble = u"其余的暂时没能读到，稍后会再试。"_s;
    count();
}

QCoro::Task<int> ConversationSearch::fetchWanted(std::chrono::milliseconds pause) {
    const QPointer self(this);
    const auto generation = m_generation;
    const bool compared = co_await compare();
    if (!self || m_generation != generation || !compared)
        co_return 0;
    int failures = 0;
    while (failures < mostFailures && !m_wanted.isEmpty() && !m_again) {
        const QString id = m_wanted.takeFirst();
        if (!mayFetch(id))
            continue;
        const bool on = co_await idle(pause);
        if (!self || m_generation != generation || !on)
            co_return failures;
        // One that is there already has been changed elsewhere since.
        const bool fetched = co_await fetch(id, m_missing.contains(id) ? Age::older : Age::latest);
        if (!self || m_generation != generation)
            co_return 0;
        failures = fetched ? 0 : failures + 1;
    }
    co_return failures;
}

QCoro::Task<bool> ConversationSearch::compare() {
    const QPointer self(this);
    const auto generation = m_generation;
    m_fresh.clear();
    const auto listed = co_await m_service.list();
    if (!self || m_generation != generation)
        co_return false;
    recheckAccount();
    if (m_generation != generation)
        co_return false;
    if (!listed) {
        setTrouble(u"没能读到对话列表，找到的可能不全。"_s);
        co_return false;
    }
    const auto kept = co_await PoolAwaiter(
        [drafts = m_drafts, account = m_account.current()] {
            const auto found = drafts.list(account);
            return found ? found->entries : QList<ConversationDraftCache::Entry>();
        },
        &m_pool);
    if (!self || m_generation != generation)
        co_return false;
    QSet<QString> local;
    for (const auto &entry : kept)
        local.insert(entry.snapshot.id);
    auto conversations = listed->conversations;
    conversations.removeIf([this](const ConversationSummaryDTO &summary) { return m_forgotten.contains(summary.id); });
    const bool planned = co_await plan(conversations, local - m_forgotten);
    if (!self || m_generation != generation || !planned)
        co_return false;
    // What was not sent yet is what the person sees, so it goes before what the service has.
    for (const auto &entry : kept) {
        if (!mayFetch(entry.snapshot.id))
            continue;
        co_await put(entry.snapshot, Age::latest, false);
        if (!self || m_generation != generation)
            co_return false;
        m_fresh.insert(entry.snapshot.id);
    }
    co_return true;
}

QCoro::Task<bool> ConversationSearch::plan(QList<ConversationSummaryDTO> listed, QSet<QString> local) {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto plan = co_await onIndex([listed, local, fresh = m_fresh](ConversationSearchIndex &index) {
        auto made = index.plan(listed, local, fresh);
        if (made || made.error() == Fault::storage)
            return made;
        index.discard();
        return index.plan(listed, local, fresh);
    });
    if (!self || m_generation != generation)
        co_return false;
    if (!plan) {
        setTrouble(u"查找用的索引暂时用不了。"_s);
        co_return false;
    }
    m_known = local | m_fresh;
    m_missing = local + plan->missing - m_fresh;
    for (const auto &summary : std::as_const(listed))
        m_known.insert(summary.id);
    m_known -= m_forgotten;
    m_wanted = plan->wanted;
    m_coverage.known = true;
    count();
    co_return true;
}

bool ConversationSearch::mayFetch(const QString &id) const {
    return !m_forgotten.contains(id) && !m_fresh.contains(id);
}

QCoro::Task<bool> ConversationSearch::idle(std::chrono::milliseconds pause) {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto stop = m_stop.get_token();
    if (pause == 0ms)
        co_return true;
    do {
        const bool slept = co_await m_clock.sleep(pause, stop);
        if (!self || m_generation != generation || !slept)
            co_return false;
    } while (!m_holders.isEmpty());
    co_return true;
}

QCoro::Task<bool> ConversationSearch::fetch(QString id, Age age) {
    const QPointer self(this);
    const auto generation = m_generation;
    const auto answer = co_await m_service.load(id);
    if (!self || m_generation != generation)
        co_return false;
    recheckAccount();
    if (m_generation != generation)
        co_return false;
    // Gone since it was listed: there is nothing to find in it.
    if (!answer && answer.error().status == 404) {
        settle(id);
        co_return true;
    }
    if (!answer || answer->conversation.id != id)
        co_return false;
    co_return co_await put(answer->conversation, age, false);
}

void ConversationSearch::holdBack(const QObject *holder, bool held) {
    if (held)
        m_holders.insert(holder);
    else
        m_holders.remove(holder);
}

void ConversationSearch::count() {
    m_coverage.total = m_known.size();
    m_coverage.indexed = m_known.size() - (m_missing & m_known).size();
    Q_EMIT coverageChanged();
}

void ConversationSearch::setTrouble(const QString &trouble) {
    m_coverage.trouble = trouble;
    Q_EMIT coverageChanged();
}

} // namespace lmp
