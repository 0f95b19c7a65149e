#include "screens/memory/MemoryItemsModel.h"

#include "core/PlainLabel.h"
#include "identity/MemorySearch.h"
#include "identity/TruthStatus.h"

#include <QDateTime>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

int MemoryItemsModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant MemoryItemsModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Row &row = *m_shown[std::size_t(index.row())];
    switch (role) {
    case MemoryIdRole:
        return row.item.id;
    case Qt::DisplayRole:
    case ContentRole:
        return PlainLabel::content(row.item.content);
    case TruthTextRole:
        return PlainLabel::line(TruthStatus(row.item.truth).label());
    case DetailRole:
        return detailOf(row.item);
    case FrozenRole:
        return row.item.frozen.value_or(false);
    case SupersededRole:
        return row.superseded;
    case SupersedesRole:
        return row.item.supersedes.has_value();
    case BusyRole:
        return row.busy;
    case DraftedRole:
        return m_drafted.contains(row.item.id);
    default:
        return {};
    }
}

QHash<int, QByteArray> MemoryItemsModel::roleNames() const {
    return {{MemoryIdRole, "memoryId"},     {ContentRole, "content"}, {TruthTextRole, "truthText"},
            {DetailRole, "detail"},         {FrozenRole, "frozen"},   {SupersededRole, "superseded"},
            {SupersedesRole, "supersedes"}, {BusyRole, "busy"},       {DraftedRole, "drafted"}};
}

QStringList MemoryItemsModel::foldAll(const QList<MemoryItemDTO> &items) {
    QStringList folded;
    folded.reserve(items.size());
    for (const auto &item : items)
        folded.push_back(MemorySearch::folded(item));
    return folded;
}

QString MemoryItemsModel::dateText(const QString &time) {
    const auto then = QDateTime::fromString(time, Qt::ISODate);
    return then.isValid() ? then.toLocalTime().toString(u"yyyy年M月d日"_s) : time;
}

QString MemoryItemsModel::detailOf(const MemoryItemDTO &item) {
    QStringList parts;
    const auto add = [&](const QString &label, const QString &text) {
        if (!text.isEmpty())
            parts.push_back(label + text);
    };
    add(u"来自"_s, item.source);
    add(u"用于"_s, item.scope);
    add({}, dateText(item.validFrom.value_or(QString())));
    if (item.validUntil)
        add(u"有效期到 "_s, dateText(*item.validUntil));
    if (item.touchedAt)
        add(u"最近用到 "_s, dateText(*item.touchedAt));
    return PlainLabel::line(parts.join(u" · "_s), PlainLabel::longestSentence);
}

bool MemoryItemsModel::matches(const Row &row) const {
    const auto fits = [&] {
        switch (m_query.kind) {
        case Kind::All:
            return true;
        case Kind::Superseded:
            return row.superseded;
        case Kind::Frozen:
            return row.item.frozen.value_or(false);
        case Kind::Fact:
            return row.item.truth == MemoryTruth::fact;
        case Kind::Preference:
            return row.item.truth == MemoryTruth::pref;
        case Kind::Inference:
            return row.item.truth == MemoryTruth::inf;
        case Kind::Story:
            return row.item.truth == MemoryTruth::canon;
        }
        return false;
    };
    return fits() && MemorySearch::matches(row.folded, m_words);
}

void MemoryItemsModel::setItems(const QList<MemoryItemDTO> &items, const QStringList &folded) {
    beginResetModel();
    m_shown.clear();
    m_all.clear();
    m_all.reserve(std::size_t(items.size()));
    for (qsizetype at = 0; at < items.size(); ++at)
        m_all.push_back(std::make_unique<Row>(Row{.item = items[at], .folded = folded[at]}));
    settle();
    endResetModel();
    show();
}

void MemoryItemsModel::settle() {
    QSet<QString> replaced;
    for (const auto &row : m_all) {
        if (row->item.supersedes)
            replaced.insert(*row->item.supersedes);
    }
    int place = 0;
    for (const auto &row : m_all) {
        row->place = place++;
        row->superseded = replaced.contains(row->item.id);
    }
}

void MemoryItemsModel::setQuery(const Query &query) {
    if (query == m_query)
        return;
    m_query = query;
    m_words = MemorySearch::words(query.text);
    m_window = windowSize;
    show();
}

void MemoryItemsModel::showMore() {
    m_window += windowSize;
    show();
}

void MemoryItemsModel::show() {
    Shown wanted;
    int found = 0;
    for (const auto &row : m_all) {
        if (matches(*row) && ++found <= m_window)
            wanted.push_back(row.get());
    }
    removeGone(wanted);
    insertNew(wanted);
    m_matches = found;
    Q_EMIT countsChanged();
}

void MemoryItemsModel::removeGone(const Shown &wanted) {
    const auto gone = [&](int at) {
        const auto *row = m_shown[std::size_t(at)];
        return !std::ranges::binary_search(wanted, row->place, {}, &Row::place);
    };
    for (int last = count() - 1; last >= 0; --last) {
        if (!gone(last))
            continue;
        int first = last;
        while (first > 0 && gone(first - 1))
            --first;
        beginRemoveRows({}, first, last);
        m_shown.erase(m_shown.begin() + first, m_shown.begin() + last + 1);
        endRemoveRows();
        last = first;
    }
}

void MemoryItemsModel::insertNew(const Shown &wanted) {
    // What is shown is part of what is wanted, in the same order.
    const auto isNew = [&](int at) {
        return at >= count() || m_shown[std::size_t(at)] != wanted[std::size_t(at)];
    };
    for (int first = 0; first < int(wanted.size()); ++first) {
        if (!isNew(first))
            continue;
        const auto *next = first < count() ? m_shown[std::size_t(first)] : nullptr;
        int end = first + 1;
        while (end < int(wanted.size()) && wanted[std::size_t(end)] != next)
            ++end;
        beginInsertRows({}, first, end - 1);
        m_shown.insert(m_shown.begin() + first, wanted.begin() + first, wanted.begin() + end);
        endInsertRows();
        first = end - 1;
    }
}

MemoryItemsModel::Row *MemoryItemsModel::rowOf(const QString &id) const {
    const auto found = std::ranges::find_if(m_all, [&](const auto &row) { return row->item.id == id; });
    return found == m_all.end() ? nullptr : found->get();
}

const MemoryItemDTO *MemoryItemsModel::find(const QString &id) const {
    const auto *row = rowOf(id);
    return row ? &row->item : nullptr;
}

int MemoryItemsModel::placeOf(const QString &id) const {
    const auto *row = rowOf(id);
    return row ? row->place : -1;
}

void MemoryItemsModel::put(const MemoryItemDTO &item, int place) {
    if (Row *row = rowOf(item.id)) {
        row->item = item;
        row->folded = MemorySearch::folded(item);
    } else {
        const auto at = std::clamp<std::ptrdiff_t>(place, 0, std::ssize(m_all));
        m_all.insert(m_all.begin() + at,
                     std::make_unique<Row>(Row{.item = item, .folded = MemorySearch::folded(item)}));
    }
    settle();
    show();
    // Others may have been superseded by it.
    if (count() > 0)
        Q_EMIT dataChanged(index(0), index(count() - 1));
}

void MemoryItemsModel::remove(const QString &id) {
    const auto found = std::ranges::find_if(m_all, [&](const auto &row) { return row->item.id == id; });
    if (found == m_all.end())
        return;
    const auto kept = std::move(*found);
    m_all.erase(found);
    const auto shown = std::ranges::find(m_shown, kept.get());
    if (shown != m_shown.end()) {
        const int at = int(shown - m_shown.begin());
        beginRemoveRows({}, at, at);
        m_shown.erase(shown);
        endRemoveRows();
    }
    settle();
    show();
    if (count() > 0)
        Q_EMIT dataChanged(index(0), index(count() - 1), {SupersededRole});
}

void MemoryItemsModel::tell(const Row &row) {
    const auto shown = std::ranges::find(m_shown, &row);
    if (shown == m_shown.end())
        return;
    const auto at = index(int(shown - m_shown.begin()));
    Q_EMIT dataChanged(at, at);
}

void MemoryItemsModel::setBusy(const QString &id, bool busy) {
    if (Row *row = rowOf(id)) {
        row->busy = busy;
        tell(*row);
    }
}

void MemoryItemsModel::setDrafted(const QSet<QString> &ids) {
    if (ids == m_drafted)
        return;
    m_drafted = ids;
    if (count() > 0)
        Q_EMIT dataChanged(index(0), index(count() - 1), {DraftedRole});
}

} // namespace lmp
