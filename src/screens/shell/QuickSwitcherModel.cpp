#include "screens/shell/QuickSwitcherModel.h"

#include "core/Detach.h"
#include "core/PoolAwaiter.h"

#include <algorithm>
#include <ranges>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// Letters as they are compared: lower case, and blanks are not typed.
QString typedLetters(const QString &query) {
    QString letters;
    for (const QChar character : query.toLower()) {
        if (!character.isSpace())
            letters += character;
    }
    return letters.left(64);
}

QString kindText(SwitcherEntry::Kind kind) {
    switch (kind) {
    case SwitcherEntry::Kind::Conversation:
        return u"对话"_s;
    case SwitcherEntry::Kind::Page:
        return u"页面"_s;
    case SwitcherEntry::Kind::Command:
        return u"命令"_s;
    }
    return {};
}

} // namespace

QuickSwitcherModel::QuickSwitcherModel(Source source, QObject *parent)
    : QAbstractListModel(parent)
    , m_source(std::move(source)) {}

QuickSwitcherModel::~QuickSwitcherModel() = default;

int QuickSwitcherModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant QuickSwitcherModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const SwitcherEntry &entry = m_shown[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case TitleRole:
        return entry.title;
    case KindTextRole:
        return kindText(entry.kind);
    case IconNameRole:
        return entry.iconName;
    case ShortcutTextRole:
        return entry.shortcutText;
    case UnreadRole:
        return entry.unread;
    case DraftRole:
        return entry.draft;
    default:
        return {};
    }
}

QHash<int, QByteArray> QuickSwitcherModel::roleNames() const {
    return {{TitleRole, "title"},       {KindTextRole, "kindText"},
            {IconNameRole, "iconName"}, {ShortcutTextRole, "shortcutText"},
            {UnreadRole, "unread"},     {DraftRole, "draft"}};
}

void QuickSwitcherModel::keepUpWith(const QAbstractItemModel *list) {
    connect(list, &QAbstractItemModel::modelReset, this, &QuickSwitcherModel::refresh);
    connect(list, &QAbstractItemModel::rowsInserted, this, &QuickSwitcherModel::refresh);
    connect(list, &QAbstractItemModel::rowsRemoved, this, &QuickSwitcherModel::refresh);
    connect(list, &QAbstractItemModel::rowsMoved, this, &QuickSwitcherModel::refresh);
    connect(list, &QAbstractItemModel::dataChanged, this, &QuickSwitcherModel::refresh);
}

void QuickSwitcherModel::close() {
    m_open = false;
}

void QuickSwitcherModel::refresh() {
    if (!m_open || m_stale)
        return;
    // Changes come in bursts, and some while the list itself is half changed.
    m_stale = true;
    QMetaObject::invokeMethod(this, &QuickSwitcherModel::lookAgain, Qt::QueuedConnection);
}

void QuickSwitcherModel::lookAgain() {
    m_stale = false;
    if (!m_open)
        return;
    const auto there = m_source();
    if (there == m_all)
        return;
    m_all = there;
    showAgain();
    detach(learnReadings(), "reading the switcher's titles");
}

void QuickSwitcherModel::open() {
    m_open = true;
    m_all = m_source();
    m_query.clear();
    Q_EMIT queryChanged();
    show();
    detach(learnReadings(), "reading the switcher's titles");
}

void QuickSwitcherModel::setQuery(const QString &query) {
    if (query == m_query)
        return;
    m_query = query;
    Q_EMIT queryChanged();
    show();
}

void QuickSwitcherModel::setCurrent(int row) {
    const int bounded = std::clamp(row, -1, count() - 1);
    if (bounded == m_current)
        return;
    m_current = bounded;
    Q_EMIT currentChanged();
}

void QuickSwitcherModel::move(int step) {
    if (count() > 0)
        setCurrent((std::max(m_current, 0) + step % count() + count()) % count());
}

void QuickSwitcherModel::choose(int row) {
    if (row < 0 || row >= count())
        return;
    const SwitcherEntry entry = m_shown[row];
    Q_EMIT chosen(entry);
}

QStringList QuickSwitcherModel::unspelledTitles() const {
    QStringList titles;
    for (const auto &entry : m_all) {
        if (!m_spelled.contains(entry.title))
            titles << entry.title;
    }
    return titles;
}

QCoro::Task<> QuickSwitcherModel::learnReadings() {
    const QPointer self(this);
    if (std::exchange(m_learning, true))
        co_return; // whoever learns looks once more at the end
    for (auto titles = unspelledTitles(); !titles.isEmpty(); titles = unspelledTitles()) {
        const auto spelled = co_await PoolAwaiter([titles] { return Pinyin::spell(titles); });
        if (!self)
            co_return;
        for (qsizetype at = 0; at < titles.size(); ++at)
            m_spelled.insert(titles[at], spelled[std::size_t(at)]);
        if (!m_query.isEmpty())
            showAgain();
    }
    m_learning = false;
}

void QuickSwitcherModel::showAgain() {
    const auto chosen = m_shown.value(m_current);
    show();
    const auto same = [&](const SwitcherEntry &entry) {
        return entry.kind == chosen.kind && entry.key == chosen.key;
    };
    if (const auto kept = std::ranges::find_if(std::as_const(m_shown), same); kept != m_shown.cend())
        setCurrent(int(kept - m_shown.cbegin()));
}

void QuickSwitcherModel::show() {
    using Match = std::pair<int, qsizetype>; // how well, and which: equals stay in their order
    const QString typed = typedLetters(m_query);
    std::vector<Match> matches;
    for (qsizetype at = 0; at < m_all.size(); ++at) {
        const SwitcherEntry &entry = m_all[at];
        const auto known = m_spelled.constFind(entry.title);
        const int rank = (known != m_spelled.constEnd() ? *known : Pinyin::plain({entry.title}).front()).rank(typed);
        // What is unread is looked for more often than what is not.
        if (rank >= 0)
            matches.emplace_back(rank - (entry.unread > 0 ? 5 : 0), at);
    }
    std::ranges::sort(matches);
    beginResetModel();
    m_shown.clear();
    for (const auto &[rank, at] : matches | std::views::take(50))
        m_shown << m_all[at];
    m_current = m_shown.isEmpty() ? -1 : 0;
    endResetModel();
    Q_EMIT countChanged();
    Q_EMIT currentChanged();
}

} // namespace lmp
