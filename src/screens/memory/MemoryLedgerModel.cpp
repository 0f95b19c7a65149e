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

/// What `tiers` offers.
constexpr std::array tierKinds{MemoryItemsModel::Kind::All,        MemoryItemsModel::Kind::Fact,
                               MemoryItemsModel::Kind::Preference, MemoryItemsModel::Kind::Inference,
                               MemoryItemsModel::Kind::Story,      MemoryItemsModel::Kind::Frozen};

} // namespace

MemoryLedgerModel::MemoryLedgerModel(MemoryServices services, QObject *parent)
    : QObject(parent)
    , m_services(std::move(services))
    , m_owner(m_services.account.owner())
    , m_deeds(m_services, m_items, m_candidates, m_chapters)
    , m_correction(m_services)
    , m_history(m_services)
    , m_importer(m_services) {
    connect(&m_items, &MemoryItemsModel::countsChanged, this, &MemoryLedgerModel::changed);
    connect(&m_deeds, &MemoryDeeds::changed, this, &MemoryLedgerModel::changed);
    connect(&m_deeds, &MemoryDeeds::told, this, &MemoryLedgerModel::setBanner);
    connect(&m_deeds, &MemoryDeeds::doubted, this, &MemoryLedgerModel::reload);
    connect(&m_deeds, &MemoryDeeds::overtaken, this, [this] {
        if (m_refreshing)
            reload();
    });
    connect(&m_deeds, &MemoryDeeds::ownerChanged, this, [this] { putAway(true); });
    connect(&m_correction, &MemoryCorrectionModel::settledUnseen, this, &MemoryLedgerModel::setBanner);
    connect(&m_history, &MemoryHistoryModel::settledUnseen, this, &MemoryLedgerModel::setBanner);
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

void MemoryLedgerModel::closeInputNotice() {
    m_services.inputs->closeNotice();
}

// What is seen

void MemoryLedgerModel::open() {
    recheckAccount();
    reload();
}

void MemoryLedgerModel::reload() {
    m_owner = m_services.account.owner();
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
    m_deeds.settle();
    if (const QString wanted = std::exchange(m_revealed, {}); !wanted.isEmpty())
        reveal(wanted);
    Q_EMIT changed();
}

bool MemoryLedgerModel::isFor(const QString &owner) {
    if (m_services.account.owner() == owner && m_owner == owner)
        return true;
    putAway(true);
    return false;
}

void MemoryLedgerModel::recheckAccount() {
    m_services.inputs->recheckAccount();
    if (m_services.account.owner() != m_owner)
        putAway(m_state == State::Loading || m_refreshing || m_deeds.underWay());
}

void MemoryLedgerModel::putAway(bool underWay) {
    ++m_loadId;
    m_owner = m_services.account.owner();
    m_state = underWay ? State::Failed : State::Idle;
    m_errorText = underWay ? MemoryTexts::accountChanged() : QString();
    m_refreshing = false;
    m_banner.clear();
    m_deeds.drop();
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
    return {u"全部种类"_s,
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

void MemoryLedgerModel::setBanner(const QString &text, bool failed) {
    m_banner = text;
    m_bannerFailed = failed;
    Q_EMIT changed();
}

void MemoryLedgerModel::closeBanner() {
    setBanner({}, false);
}

void MemoryLedgerModel::confirm(const QString &candidateId) {
    if (mayAct())
        m_deeds.confirm(candidateId);
}

void MemoryLedgerModel::dismiss(const QString &candidateId) {
    if (mayAct())
        m_deeds.dismiss(candidateId);
}

void MemoryLedgerModel::setFrozen(const QString &memoryId, bool frozen) {
    if (mayAct())
        m_deeds.setFrozen(memoryId, frozen);
}

void MemoryLedgerModel::forget(const QString &memoryId) {
    if (mayAct())
        m_deeds.forget(memoryId);
}

void MemoryLedgerModel::undoForget() {
    if (mayAct())
        m_deeds.undoForget();
}

void MemoryLedgerModel::resolveChapter(const QString &chapterId, bool accept) {
    if (mayAct())
        m_deeds.resolveChapter(chapterId, accept);
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
