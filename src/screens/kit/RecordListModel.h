#pragma once

#include "screens/kit/RecordOrder.h"
#include "screens/kit/RecordRoles.h"

#include <QAbstractListModel>
#include <QHash>
#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace lmp {

/// A list of described records as a model: its roles are the record's fields, by their names.
///
/// `Key` is the field that tells two records apart (`&Conversation::id`); without one a record is its place in the
/// list. Owned by whoever shows the list; UI thread. It does not fail: records with the same key are told apart by
/// their order, and a field that QML cannot hold is no role.
template <class Record, auto Key = nullptr>
class RecordListModel : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] const std::vector<Record> &records() const { return m_records; }

    /// Makes the list equal to `records`, telling of the rows that went, moved, came or changed and of no others, so
    /// that a view keeps its place, its selection and its delegates.
    void setRecords(std::vector<Record> records) {
        const std::vector<Place> wanted = places(records);
        const QHash<Place, int> rows = rowsOf(wanted);
        removeGone(rows);
        moveKept(rows);
        insertNew(records, wanted);
        for (int row = 0; row < int(records.size()); ++row)
            change(row, std::move(records[std::size_t(row)]));
    }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override {
        return parent.isValid() ? 0 : int(m_records.size());
    }

    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override {
        if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
            return {};
        return RecordRoles<Record>::value(m_records[std::size_t(index.row())], role);
    }

    [[nodiscard]] QHash<int, QByteArray> roleNames() const override { return RecordRoles<Record>::names(); }

private:
    static auto keyOf(const Record &record) {
        if constexpr (std::is_same_v<decltype(Key), std::nullptr_t>)
            return 0;
        else
            return record.*Key;
    }

    /// A key, and how many rows before it have the same.
    using Place = std::pair<decltype(keyOf(std::declval<const Record &>())), int>;

    static std::vector<Place> places(const std::vector<Record> &records) {
        std::vector<Place> places;
        places.reserve(records.size());
        QHash<typename Place::first_type, int> seen;
        for (const Record &record : records) {
            const auto key = keyOf(record);
            places.emplace_back(key, seen[key]++);
        }
        return places;
    }

    static QHash<Place, int> rowsOf(const std::vector<Place> &places) {
        QHash<Place, int> rows;
        rows.reserve(qsizetype(places.size()));
        for (std::size_t row = 0; row < places.size(); ++row)
            rows.insert(places[row], int(row));
        return rows;
    }

    void removeGone(const QHash<Place, int> &rows) {
        const std::vector<Place> had = places(m_records);
        const auto gone = [&](int row) {
            return !rows.contains(had[std::size_t(row)]);
        };
        for (int last = int(had.size()) - 1; last >= 0; --last) {
            if (!gone(last))
                continue;
            int first = last;
            while (first > 0 && gone(first - 1))
                --first;
            beginRemoveRows({}, first, last);
            m_records.erase(m_records.begin() + first, m_records.begin() + last + 1);
            endRemoveRows();
            last = first;
        }
    }

    /// Brings what stayed into the wanted order with as few moves as there can be.
    void moveKept(const QHash<Place, int> &rows) {
        std::vector<int> targets;
        targets.reserve(m_records.size());
        for (const Place &place : places(m_records))
            targets.push_back(rows.value(place));
        for (const auto &[from, to] : movesIntoOrder(std::move(targets))) {
            // What a view is told names the row that the moved one comes to stand before.
            beginMoveRows({}, from, from, {}, to > from ? to + 1 : to);
            const auto begin = m_records.begin();
            if (to > from)
                std::rotate(begin + from, begin + from + 1, begin + to + 1);
            else
                std::rotate(begin + to, begin + from, begin + from + 1);
            endMoveRows();
        }
    }

    void insertNew(const std::vector<Record> &records, const std::vector<Place> &wanted) {
        const QHash<Place, int> had = rowsOf(places(m_records));
        const auto isNew = [&](int row) {
            return !had.contains(wanted[std::size_t(row)]);
        };
        for (int first = 0; first < int(wanted.size()); ++first) {
            if (!isNew(first))
                continue;
            int end = first + 1;
            while (end < int(wanted.size()) && isNew(end))
                ++end;
            beginInsertRows({}, first, end - 1);
            m_records.insert(m_records.begin() + first, records.begin() + first, records.begin() + end);
            endInsertRows();
            first = end;
        }
    }

    void change(int row, Record &&record) {
        const QList<int> roles = RecordRoles<Record>::differing(m_records[std::size_t(row)], record);
        m_records[std::size_t(row)] = std::move(record);
        if (!roles.isEmpty())
            Q_EMIT dataChanged(index(row), index(row), roles);
    }

    std::vector<Record> m_records;
};

} // namespace lmp
