#pragma once

#include "screens/shell/Pinyin.h"
#include "screens/shell/SwitcherEntry.h"

#include <QAbstractListModel>
#include <QCoroTask>
#include <QHash>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// What the quick switcher offers for what has been typed: conversations, pages and commands.
///
/// One for each window, owned by its scene, UI thread. Titles match as they are written, by pinyin and by initials;
/// how they are read is worked out on another thread when the switcher first opens, and kept. Nothing fails: without
/// readings titles still match as they are written.
class QuickSwitcherModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the window's scene")
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(int current READ current WRITE setCurrent NOTIFY currentChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Role {
        TitleRole = Qt::UserRole + 1, ///< title: QString
        KindTextRole,                 ///< kindText: QString
        IconNameRole,                 ///< iconName: QString
        ShortcutTextRole,             ///< shortcutText: QString
        UnreadRole,                   ///< unread: int
        DraftRole,                    ///< draft: bool
    };
    using Source = std::function<QList<SwitcherEntry>()>;

    /// @param source what there is to go to, the likeliest first; asked when the switcher opens, and as `keepUpWith`
    /// says
    explicit QuickSwitcherModel(Source source, QObject *parent = nullptr);
    ~QuickSwitcherModel() override;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const QString &query() const { return m_query; }
    void setQuery(const QString &query);
    /// The row that Enter takes; -1 when there is none.
    int current() const { return m_current; }
    void setCurrent(int row);
    int count() const { return int(m_shown.size()); }

    /// Looks anew, while the switcher is open, whenever `list` changes: what is typed and chosen stays.
    void keepUpWith(const QAbstractItemModel *list);
    /// Looks anew at what there is, with nothing typed.
    Q_INVOKABLE void open();
    /// From here to the next opening nobody looks.
    Q_INVOKABLE void close();
    /// Moves the current row by `step`, around the ends.
    Q_INVOKABLE void move(int step);
    /// Goes to the entry of `row`.
    Q_INVOKABLE void choose(int row);

Q_SIGNALS:
    void queryChanged();
    void currentChanged();
    void countChanged();
    void chosen(const lmp::SwitcherEntry &entry);

private:
    QCoro::Task<> learnReadings();
    QStringList unspelledTitles() const;
    void lookAgain();
    void refresh();
    void show();
    /// Keeps what is chosen.
    void showAgain();

    Source m_source;
    QList<SwitcherEntry> m_all;
    QList<SwitcherEntry> m_shown;
    QHash<QString, SpelledTitle> m_spelled; ///< with readings
    QString m_query;
    int m_current = -1;
    bool m_learning = false;
    bool m_open = false;
    bool m_stale = false; ///< a look is on its way
};

} // namespace lmp
