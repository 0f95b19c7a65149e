#pragma once

#include "identity/MemoryBundle.h"
#include "screens/memory/MemoryCorrectionModel.h"
#include "screens/memory/MemoryDeeds.h"
#include "screens/memory/MemoryHistoryModel.h"
#include "screens/memory/MemoryImportModel.h"

namespace lmp {

/// The ledger of what the twin remembers, as a window shows it: what there is, what is looked for, and what is being
/// done to which memory.
///
/// One for each window, owned by its scene; the inputs outlive it. UI thread. Nothing fails outwards: failures are
/// texts. What was asked for one account is never shown to another.
class MemoryLedgerModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the window's scene")
    Q_PROPERTY(lmp::MemoryItemsModel *items READ items CONSTANT)
    Q_PROPERTY(QAbstractItemModel *candidates READ candidates CONSTANT)
    Q_PROPERTY(QAbstractItemModel *chapters READ chapters CONSTANT)
    Q_PROPERTY(lmp::MemoryCorrectionModel *correction READ correction CONSTANT)
    Q_PROPERTY(lmp::MemoryHistoryModel *history READ history CONSTANT)
    Q_PROPERTY(lmp::MemoryImportModel *importer READ importer CONSTANT)
    Q_PROPERTY(State state READ state NOTIFY changed)
    /// Asked for anew while there is something to show.
    Q_PROPERTY(bool refreshing READ refreshing NOTIFY changed)
    /// Why there is nothing to show; `reload` is the action.
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
    Q_PROPERTY(int total READ total NOTIFY changed)
    Q_PROPERTY(int waiting READ waiting NOTIFY changed)
    Q_PROPERTY(int pendingChapters READ pendingChapters NOTIFY changed)
    Q_PROPERTY(QString banner READ banner NOTIFY changed)
    Q_PROPERTY(bool bannerFailed READ bannerFailed NOTIFY changed)
    /// What was just forgotten and can be taken back; empty when there is nothing.
    Q_PROPERTY(QString undoText READ undoText NOTIFY changed)
    /// What is typed and could not be kept.
    Q_PROPERTY(QString inputNotice READ inputNotice NOTIFY changed)
    Q_PROPERTY(Filter filter READ filter WRITE setFilter NOTIFY queryChanged)
    Q_PROPERTY(int tier READ tier WRITE setTier NOTIFY queryChanged)
    Q_PROPERTY(QList<QString> tiers READ tiers CONSTANT)
    Q_PROPERTY(QString searchText READ searchText WRITE find NOTIFY queryChanged)
    /// What stands in place of the memories when there are none, and below it; empty when there are some.
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(QString supersededText READ supersededText CONSTANT)
    Q_PROPERTY(QString supersedesText READ supersedesText CONSTANT)
    Q_PROPERTY(QString candidatesNote READ candidatesNote CONSTANT)
public:
    enum class State { Idle, Loading, Loaded, Failed };
    Q_ENUM(State)
    enum class Filter { All, Waiting, Superseded, Chapters };
    Q_ENUM(Filter)

    explicit MemoryLedgerModel(MemoryServices services, QObject *parent = nullptr);
    ~MemoryLedgerModel() override;

    MemoryItemsModel *items() { return &m_items; }
    QAbstractItemModel *candidates() { return &m_candidates; }
    QAbstractItemModel *chapters() { return &m_chapters; }
    MemoryCorrectionModel *correction() { return &m_correction; }
    MemoryHistoryModel *history() { return &m_history; }
    MemoryImportModel *importer() { return &m_importer; }
    State state() const { return m_state; }
    bool refreshing() const { return m_refreshing; }
    const QString &errorText() const { return m_errorText; }
    int total() const { return m_items.total(); }
    int waiting() const { return int(m_candidates.records().size()); }
    int pendingChapters() const;
    const QString &banner() const { return m_banner; }
    bool bannerFailed() const { return m_bannerFailed; }
    QString undoText() const { return m_deeds.undoText(); }
    const QString &inputNotice() const;
    Filter filter() const { return m_filter; }
    void setFilter(Filter filter);
    int tier() const { return m_tier; }
    void setTier(int tier); ///< of `tiers`
    static QStringList tiers();
    const QString &searchText() const { return m_items.query().text; }
    QString emptyTitle() const;
    QString emptyText() const;
    static QString supersededText();
    static QString supersedesText();
    static QString candidatesNote();

    /// The ledger comes to be seen: it is asked for, also when it was there before.
    Q_INVOKABLE void open();
    Q_INVOKABLE void reload();
    /// Shows the memories that hold every word of `text`, of one character or more; all for an empty one.
    Q_INVOKABLE void find(const QString &text);
    /// Everything is to be seen again.
    Q_INVOKABLE void showAll();
    /// Goes to one memory, as soon as the ledger is there.
    Q_INVOKABLE void reveal(const QString &memoryId);
    Q_INVOKABLE void confirm(const QString &candidateId);
    Q_INVOKABLE void dismiss(const QString &candidateId);
    Q_INVOKABLE void setFrozen(const QString &memoryId, bool frozen);
    Q_INVOKABLE void forget(const QString &memoryId);
    Q_INVOKABLE void undoForget();
    Q_INVOKABLE void closeUndo() { m_deeds.closeUndo(); }
    Q_INVOKABLE void resolveChapter(const QString &chapterId, bool accept);
    Q_INVOKABLE void edit(const QString &memoryId);
    Q_INVOKABLE void showHistory(const QString &memoryId);
    Q_INVOKABLE void copy(const QString &memoryId);
    Q_INVOKABLE void closeBanner();
    Q_INVOKABLE void closeInputNotice();

    /// To be called when somebody else may be signed in.
    void recheckAccount();
    /// Puts on disk what is typed. @return false when something could be lost
    QCoro::Task<bool> preserve();

Q_SIGNALS:
    void changed();
    void queryChanged();

private:
    QCoro::Task<> load(quint64 loadId, QString owner);
    /// Whether an answer for `owner` may still be shown; where somebody else has come, everything is put away.
    bool isFor(const QString &owner);
    void putAway(bool underWay);
    /// Whether something may be done to what is shown.
    bool mayAct() const { return m_services.account.isStill(m_owner); }
    void setBanner(const QString &text, bool failed);
    void updateQuery();
    void onDrafts();
    void onReworded(const QString &memoryId, const QString &content);

    MemoryServices m_services;
    QString m_owner; ///< whose what is here is
    quint64 m_loadId = 0;
    State m_state = State::Idle;
    bool m_refreshing = false;
    QString m_errorText;
    QString m_banner;
    bool m_bannerFailed = false;
    QString m_revealed; ///< to be gone to when the ledger is there
    Filter m_filter = Filter::All;
    int m_tier = 0;
    MemoryItemsModel m_items;
    MemoryDeeds::Candidates m_candidates;
    MemoryDeeds::Chapters m_chapters;
    MemoryDeeds m_deeds;
    MemoryCorrectionModel m_correction;
    MemoryHistoryModel m_history;
    MemoryImportModel m_importer;
};

} // namespace lmp
