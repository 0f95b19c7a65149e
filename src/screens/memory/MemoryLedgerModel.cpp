#include "screens/memory/MemoryLedgerModel.h"

#include "core/Detach.h"
#include "core/PoolAwaiter.h"
#include "identity/MemoryTexts.h"
#include "identity/TruthStatus.h"
#include "screens/memory/MemoryInputs.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// The words of the service's contract.
const QString accepted = u"accept"_s;
const QString rejected = u"reject"_s;

/// What `tiers` offers.
constexpr std::array tierKinds{MemoryItemsModel::Kind::All,        MemoryItemsModel::Kind::Fact,
                               MemoryItemsModel::Kind::Preference, MemoryItemsModel::Kind::Inference,
                               MemoryItemsModel::Kind::Story,      MemoryItemsModel::Kind::Frozen};

} // namespace

MemoryLedgerModel::MemoryLedgerModel(MemoryServices services, QObject *parent)
    : QObject(parent)
    , m_services(std::move(services))
    , m_owner(m_services.account.key())
    , m_correction(m_services)
    , m_history(m_services)
    , m_importer(m_services) {
    connect(&m_items, &MemoryItemsModel::countsChanged, this, &MemoryLedgerModel::changed);
    connect(&m_correction, &MemoryCorrectionModel::reworded, this, &MemoryLedgerModel::onReworded);
    connect(&m_history, &MemoryHistoryModel::reworded, this, &MemoryLedgerModel::onReworded);
    connect(&m_importer, &MemoryImportModel::ledgerChanged, this, &MemoryLedgerModel::reload);
    connect(m_services.inputs, &MemoryInputs::keysChanged, this, &MemoryLedgerModel::onDrafts);
    connect(m_services.inputs, &MemoryInputs::replaced, this, &MemoryLedgerModel::changed);
    onDrafts();
}

MemoryLedgerModel::~MemoryLedgerModel() = default;

int MemoryLedgerModel::pendingChapters() const {
    return int(std::ranges::count_if(m_chapters.records(), &ChapterRow::pending));
}

const QString &MemoryLedgerModel::inputNotice() const {
    return m_services.inputs->notice();
}

// What is seen

void MemoryLedgerModel::open() {
    recheckAccount();
    reload();
}

void MemoryLedgerModel::reload() {
    m_owner = m_services.account.key();
    if (m_state == State::Loaded)
        m_refreshing = true;
    else
        m_state = State::Loading;
    m_errorText.clear();
    detach(load(++m_loadId, m_owner), "reading the ledger");
    Q_EMIT changed();
}

QCoro::Task<> MemoryLedgerModel::load(quint64 loadId, QString owner) {
    const QPointer self(this);
    auto bundle = co_await m_services.service.load();
    if (!self || m_loadId != loadId || !isFor(owner))
        co_return;
    if (!bundle) {
        m_refreshing = false;
        if (m_state == State::Loaded)
            setBanner(MemoryTexts::loadFailed(), true);
        else {
            m_state = State::Failed;
            m_errorText = MemoryTexts::loadFailed();
        }
        Q_EMIT changed();
        co_return;
    }
    // Folding ten thousand texts takes longer than a frame.
    const auto folded = co_await PoolAwaiter([items = bundle->items] { return MemoryItemsModel::foldAll(items); });
    if (!self || m_loadId != loadId || !isFor(owner))
        co_return;
    m_state = State::Loaded;
    m_refreshing = false;
    m_items.setItems(bundle->items, folded);
    std::vector<MemoryCandidateRow> candidates;
    for (const auto &candidate : bundle->candidates)
        candidates.push_back(MemoryCandidateRow::of(candidate));
    m_candidates.setRecords(std::move(candidates));
    std::vector<ChapterRow> chapters;
    for (const auto &chapter : bundle->chapters)
        chapters.push_back(ChapterRow::of(chapter));
    m_chapters.setRecords(std::move(chapters));
    tellBusy();
    if (const QString wanted = std::exchange(m_revealed, {}); !wanted.isEmpty())
        reveal(wanted);
    Q_EMIT changed();
}

bool MemoryLedgerModel::isFor(const QString &owner) {
    if (m_services.account.key() == owner && m_owner == owner)
        return true;
    putAway(true);
    return false;
}

void MemoryLedgerModel::recheckAccount() {
    m_services.inputs->recheckAccount();
    if (m_services.account.key() != m_owner)
        putAway(m_state == State::Loading || m_refreshing || !m_busy.isEmpty());
}

void MemoryLedgerModel::putAway(bool underWay) {
    ++m_loadId;
    ++m_generation;
    m_owner = m_services.account.key();
    m_state = underWay ? State::Failed : State::Idle;
    m_errorText = underWay ? MemoryTexts::accountChanged() : QString();
    m_refreshing = false;
    m_banner.clear();
    m_busy.clear();
    m_forgotten.reset();
    m_revealed.clear();
    m_items.setItems({}, {});
    m_candidates.setRecords({});
    m_chapters.setRecords({});
    m_correction.drop();
    m_history.drop();
    m_importer.drop();
    m_filter = Filter::All;
    m_tier = 0;
    m_items.setQuery({});
    Q_EMIT queryChanged();
    Q_EMIT changed();
}

QStringList MemoryLedgerModel::tiers() {
    using enum TruthStatus::Value;
    return {u"各种来由"_s,
            TruthStatus(youSaid).label(),
            TruthStatus(yourPreference).label(),
            TruthStatus(iInferred).label(),
            TruthStatus(storySetting).label(),
            u"已冻结"_s};
}

void MemoryLedgerModel::setFilter(Filter filter) {
    if (std::exchange(m_filter, filter) != filter)
        updateQuery();
}

void MemoryLedgerModel::setTier(int tier) {
    if (tier >= 0 && tier < int(tierKinds.size()) && std::exchange(m_tier, tier) != tier)
        updateQuery();
}

void MemoryLedgerModel::find(const QString &text) {
    auto query = m_items.query();
    if (query.text == text)
        return;
    query.text = text;
    m_items.setQuery(query);
    Q_EMIT queryChanged();
}

void MemoryLedgerModel::showAll() {
    m_filter = Filter::All;
    m_tier = 0;
    m_items.setQuery({});
    Q_EMIT queryChanged();
    Q_EMIT changed();
}

void MemoryLedgerModel::updateQuery() {
    auto query = m_items.query();
    query.kind = m_filter == Filter::Superseded ? MemoryItemsModel::Kind::Superseded : tierKinds[std::size_t(m_tier)];
    m_items.setQuery(query);
    Q_EMIT queryChanged();
    Q_EMIT changed();
}

QString MemoryLedgerModel::emptyTitle() const {
    if (m_state != State::Loaded)
        return {};
    switch (m_filter) {
    case Filter::Waiting:
        return waiting() == 0 ? u"没有等你确认的记忆"_s : QString();
    case Filter::Chapters:
        return m_chapters.records().empty() ? u"还没有章节"_s : QString();
    case Filter::All:
    case Filter::Superseded:
        break;
    }
    if (m_items.count() > 0)
        return {};
    return m_items.total() == 0 ? MemoryTexts::emptyTitle() : MemoryTexts::noMatchTitle();
}

QString MemoryLedgerModel::emptyText() const {
    if (emptyTitle().isEmpty())
        return {};
    switch (m_filter) {
    case Filter::Waiting:
        return u"整理对话或导入文本之后，找到的会先放在这里，等你说了算。"_s;
    case Filter::Chapters:
        return u"记住的多了，会从里面理出几段故事，先给你看。"_s;
    case Filter::All:
    case Filter::Superseded:
        break;
    }
    return m_items.total() == 0 ? MemoryTexts::emptyText() : MemoryTexts::noMatchText();
}

QString MemoryLedgerModel::supersededText() {
    return MemoryTexts::superseded();
}

QString MemoryLedgerModel::supersedesText() {
    return MemoryTexts::supersedes();
}

QString MemoryLedgerModel::candidatesNote() {
    return MemoryTexts::candidatesNote();
}

void MemoryLedgerModel::reveal(const QString &memoryId) {
    if (m_state != State::Loaded) {
        m_revealed = memoryId;
        return;
    }
    showAll();
    if (m_items.find(memoryId))
        showHistory(memoryId);
    else
        setBanner(u"没有找到这条记忆，它可能已经被忘记。"_s, true);
}

// What is done

bool MemoryLedgerModel::begin(const QString &id) {
    if (m_busy.contains(id) || m_services.account.key() != m_owner)
        return false;
    m_busy.insert(id);
    tellBusy();
    return true;
}

void MemoryLedgerModel::end(const QString &id) {
    m_busy.remove(id);
    m_items.setBusy(id, false);
    tellBusy();
}

void MemoryLedgerModel::tellBusy() {
    for (const QString &id : std::as_const(m_busy))
        m_items.setBusy(id, true);
    auto candidates = m_candidates.records();
    for (auto &candidate : candidates)
        candidate.busy = m_busy.contains(candidate.candidateId);
    m_candidates.setRecords(std::move(candidates));
    auto chapters = m_chapters.records();
    for (auto &chapter : chapters)
        chapter.busy = m_busy.contains(chapter.chapterId);
    m_chapters.setRecords(std::move(chapters));
}

void MemoryLedgerModel::setBanner(const QString &text, bool failed) {
    m_banner = text;
    m_bannerFailed = failed;
    m_forgotten.reset();
    Q_EMIT changed();
}

void MemoryLedgerModel::closeBanner() {
    setBanner({}, false);
}

void MemoryLedgerModel::confirm(const QString &candidateId) {
    if (begin(candidateId))
        detach(confirmNow(candidateId), "confirming a candidate");
}

QCoro::Task<> MemoryLedgerModel::confirmNow(QString candidateId) {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_owner;
    const auto answer = co_await m_services.service.confirm(candidateId);
    if (!self || m_generation != generation || !isFor(owner))
        co_return;
    end(candidateId);
    if (!answer) {
        setBanner(MemoryTexts::candidateNotConfirmed(), true);
        co_return;
    }
    auto candidates = m_candidates.records();
    std::erase_if(candidates, [&](const auto &candidate) { return candidate.candidateId == candidateId; });
    m_candidates.setRecords(std::move(candidates));
    if (answer->item)
        m_items.put(*answer->item);
    setBanner(answer->supersededContent ? MemoryTexts::confirmedInPlaceOf(*answer->supersededContent)
                                        : MemoryTexts::candidateConfirmed(),
              false);
    // A load that was under way may have begun before.
    if (self && (!answer->item || m_refreshing))
        reload();
}

void MemoryLedgerModel::dismiss(const QString &candidateId) {
    if (begin(candidateId))
        detach(dismissNow(candidateId), "dismissing a candidate");
}

QCoro::Task<> MemoryLedgerModel::dismissNow(QString candidateId) {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_owner;
    const auto answer = co_await m_services.service.dismiss(candidateId);
    if (!self || m_generation != generation || !isFor(owner))
        co_return;
    end(candidateId);
    if (!answer) {
        setBanner(MemoryTexts::candidateNotDropped(), true);
        co_return;
    }
    auto candidates = m_candidates.records();
    std::erase_if(candidates, [&](const auto &candidate) { return candidate.candidateId == candidateId; });
    m_candidates.setRecords(std::move(candidates));
    Q_EMIT changed();
    if (self && m_refreshing)
        reload();
}

void MemoryLedgerModel::setFrozen(const QString &memoryId, bool frozen) {
    if (begin(memoryId))
        detach(freezeNow(memoryId, frozen), "freezing a memory");
}

QCoro::Task<> MemoryLedgerModel::freezeNow(QString memoryId, bool frozen) {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_owner;
    const auto answer = co_await m_services.service.freeze(memoryId, frozen);
    if (!self || m_generation != generation || !isFor(owner))
        co_return;
    end(memoryId);
    if (!answer) {
        setBanner(MemoryTexts::notDone(frozen ? u"冻结"_s : u"解冻"_s, answer.error().reason), true);
        co_return;
    }
    if (const auto *item = m_items.find(memoryId)) {
        auto changedItem = *item;
        changedItem.frozen = frozen;
        m_items.put(changedItem);
    }
    if (self && m_refreshing)
        reload();
}

void MemoryLedgerModel::forget(const QString &memoryId) {
    if (begin(memoryId))
        detach(forgetNow(memoryId), "forgetting a memory");
}

QCoro::Task<> MemoryLedgerModel::forgetNow(QString memoryId) {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_owner;
    const auto answer = co_await m_services.service.forget(memoryId);
    if (!self || m_generation != generation || !isFor(owner))
        co_return;
    end(memoryId);
    if (!answer) {
        setBanner(MemoryTexts::notDone(u"忘记"_s, answer.error().reason), true);
        co_return;
    }
    const auto *item = m_items.find(memoryId);
    const QString content = item ? item->content : answer->item ? answer->item->content : QString();
    m_banner = MemoryTexts::forgotten(content);
    m_bannerFailed = false;
    m_forgotten = answer->item;
    m_forgottenPlace = std::max(0, m_items.placeOf(memoryId));
    m_services.inputs->setText(MemoryCorrectionModel::keyOf(memoryId), {});
    m_items.remove(memoryId);
    Q_EMIT changed();
    if (self && m_refreshing)
        reload();
}

void MemoryLedgerModel::undoForget() {
    if (m_forgotten && begin(m_forgotten->id))
        detach(restoreNow(*m_forgotten, m_forgottenPlace), "restoring a memory");
}

QCoro::Task<> MemoryLedgerModel::restoreNow(MemoryItemDTO item, int place) {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_owner;
    const auto answer = co_await m_services.service.restore(item);
    if (!self || m_generation != generation || !isFor(owner))
        co_return;
    end(item.id);
    if (!answer) {
        // Another may have been forgotten meanwhile: what can still be taken back stays so.
        m_banner = MemoryTexts::notDone(u"恢复"_s, answer.error().reason);
        m_bannerFailed = true;
        Q_EMIT changed();
        co_return;
    }
    m_items.put(item, place);
    if (!m_forgotten || m_forgotten->id == item.id)
        setBanner(MemoryTexts::restored(), false);
    if (self && m_refreshing)
        reload();
}

void MemoryLedgerModel::resolveChapter(const QString &chapterId, bool accept) {
    if (begin(chapterId))
        detach(resolveNow(chapterId, accept), "resolving a chapter");
}

QCoro::Task<> MemoryLedgerModel::resolveNow(QString chapterId, bool accept) {
    const QPointer self(this);
    const auto generation = m_generation;
    const QString owner = m_owner;
    const auto answer = co_await m_services.service.resolveChapter(chapterId, accept ? accepted : rejected);
    if (!self || m_generation != generation || !isFor(owner))
        co_return;
    end(chapterId);
    if (!answer) {
        setBanner(MemoryTexts::notDone(accept ? u"收下这一章"_s : u"去掉这一章"_s, answer.error().reason), true);
        co_return;
    }
    auto chapters = m_chapters.records();
    const auto chapter = std::ranges::find(chapters, chapterId, &ChapterRow::chapterId);
    if (chapter != chapters.end() && accept)
        chapter->pending = false;
    else if (chapter != chapters.end())
        chapters.erase(chapter);
    m_chapters.setRecords(std::move(chapters));
    Q_EMIT changed();
    if (self && m_refreshing)
        reload();
}

void MemoryLedgerModel::edit(const QString &memoryId) {
    if (const auto *item = m_items.find(memoryId))
        m_correction.open(*item);
}

void MemoryLedgerModel::showHistory(const QString &memoryId) {
    m_history.open(memoryId);
}

void MemoryLedgerModel::copy(const QString &memoryId) {
    if (const auto *item = m_items.find(memoryId); item && QGuiApplication::clipboard())
        QGuiApplication::clipboard()->setText(item->content);
}

void MemoryLedgerModel::onReworded(const QString &memoryId, const QString &content) {
    if (const auto *item = m_items.find(memoryId)) {
        auto changedItem = *item;
        changedItem.content = content;
        // Whoever corrects a memory confirms it by that.
        changedItem.truth = MemoryTruth::fact;
        m_items.put(changedItem);
    }
    // What else the service changed about it, it tells itself.
    reload();
}

void MemoryLedgerModel::onDrafts() {
    QSet<QString> ids;
    const QString prefix = MemoryCorrectionModel::keyOf({});
    for (const QString &key : m_services.inputs->keys()) {
        if (key.startsWith(prefix))
            ids.insert(key.sliced(prefix.size()));
    }
    m_items.setDrafted(ids);
}

QCoro::Task<bool> MemoryLedgerModel::preserve() {
    return m_services.inputs->keep();
}

} // namespace lmp
