#pragma once

#include "identity/MemoryItemDTO.h"

#include <QAbstractListModel>
#include <QSet>
#include <QtQml/qqmlregistration.h>

#include <memory>
#include <vector>

namespace lmp {

/// The memories of the ledger that match what is looked for: the first of them, and more when asked.
///
/// Part of the ledger's model; UI thread, but for `foldAll`, which is pure. Nothing fails.
class MemoryItemsModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a MemoryLedgerModel")
    Q_PROPERTY(int count READ count NOTIFY countsChanged)
    /// How many match beyond those that are rows.
    Q_PROPERTY(int hidden READ hidden NOTIFY countsChanged)
public:
    enum Role {
        MemoryIdRole = Qt::UserRole + 1, ///< memoryId: QString
        ContentRole,                     ///< content: QString
        TruthTextRole,                   ///< truthText: QString
        DetailRole,                      ///< detail: QString, one line: from where, for what, since when
        FrozenRole,                      ///< frozen: bool
        SupersededRole,                  ///< superseded: bool, a newer memory took its place
        SupersedesRole,                  ///< supersedes: bool, it took the place of an older one
        BusyRole,                        ///< busy: bool, a request about it is under way
        DraftedRole,                     ///< drafted: bool, a correction of it was begun and not saved
    };
    /// Which memories, of all.
    enum class Kind { All, Superseded, Frozen, Fact, Preference, Inference, Story };
    struct Query {
        Kind kind = Kind::All;
        QString text; ///< as it was typed; every word of it must occur
        bool operator==(const Query &) const = default;
    };
    /// So many rows at once.
    static constexpr int windowSize = 40;

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_shown.size()); }
    int hidden() const { return m_matches - count(); }
    int total() const { return int(m_all.size()); }

    /// What of each memory is searched, folded; costs time, for any thread.
    static QStringList foldAll(const QList<MemoryItemDTO> &items);

    /// @param folded of `items`, in their order
    void setItems(const QList<MemoryItemDTO> &items, const QStringList &folded);
    void setQuery(const Query &query);
    const Query &query() const { return m_query; }
    Q_INVOKABLE void showMore();

    /// The memory, or null; valid until the next change.
    const MemoryItemDTO *find(const QString &id) const;
    /// Where a memory stands among all; -1 without it.
    int placeOf(const QString &id) const;
    /// Puts a memory in, in place of the one with its id.
    void put(const MemoryItemDTO &item, int place = 0);
    void remove(const QString &id);
    void setBusy(const QString &id, bool busy);
    void setDrafted(const QSet<QString> &ids);

    /// "2026年11月3日" of a time as the service writes it; what is no time stays as it is.
    static QString dateText(const QString &time);

Q_SIGNALS:
    void countsChanged();

private:
    struct Row {
        MemoryItemDTO item;
        QString folded;
        bool superseded = false;
        bool busy = false;
        int place = 0;
    };
    using Shown = std::vector<const Row *>;

    static QString detailOf(const MemoryItemDTO &item);
    bool matches(const Row &row) const;
    /// Numbers the rows and finds out which were superseded.
    void settle();
    /// Puts the rows of `m_all` in the place of those that are shown with the same ids.
    void replaceShown();
    void show();
    void removeGone(const Shown &wanted);
    void insertNew(const Shown &wanted);
    void tell(const Row &row);
    Row *rowOf(const QString &id) const;

    std::vector<std::unique_ptr<Row>> m_all;
    Shown m_shown; ///< of `m_all`, in its order
    QSet<QString> m_drafted;
    Query m_query;
    QStringList m_words; ///< of the query, folded
    int m_window = windowSize;
    int m_matches = 0;
};

} // namespace lmp
