#pragma once

#include "conversation/ConversationSearch.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QTimer>
#include <QtQmlIntegration>

namespace lmp {

/// What the search over all conversations shows: the messages found, the latest first, and how much was looked through.
///
/// One for each window, owned by its scene; the search outlives it. UI thread. An answer that is late for what is typed
/// now, or for another account, is dropped; the account's results are gone with it.
class ConversationSearchModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the window's scene")
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY stateChanged)
    Q_PROPERTY(int count READ count NOTIFY stateChanged)
    Q_PROPERTY(int current READ current WRITE setCurrent NOTIFY stateChanged)
    Q_PROPERTY(bool more READ more NOTIFY stateChanged)
    /// What came of it: how many, none, or why not. Empty before anything is asked.
    Q_PROPERTY(QString statusText READ statusText NOTIFY stateChanged)
    /// What was not looked through; empty when everything was.
    Q_PROPERTY(QString coverageText READ coverageText NOTIFY stateChanged)
public:
    enum Role {
        TitleRole = Qt::UserRole + 1, ///< title: QString, of the conversation
        SpeakerRole,                  ///< speaker: QString
        ExcerptRole,                  ///< excerpt: QString, styled: the matches are marked
        SpokenRole,                   ///< spoken: QString, for who listens
    };

    explicit ConversationSearchModel(ConversationSearch &search, QObject *parent = nullptr);
    ~ConversationSearchModel() override;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const QString &query() const { return m_query; }
    /// Asks a moment later, when nothing more is typed.
    void setQuery(const QString &query);
    int count() const { return int(m_hits.size()); }
    int current() const { return m_current; }
    void setCurrent(int row);
    bool more() const { return m_more; }
    const QString &statusText() const { return m_status; }
    QString coverageText() const { return m_search.coverage().text(); }

    /// Looks whether there is anything new to look through.
    Q_INVOKABLE void open();
    Q_INVOKABLE void move(int by) { setCurrent(m_current + by); }
    /// Adds the next results below those that there are.
    Q_INVOKABLE void fetchOlder();
    Q_INVOKABLE void choose(int row);

Q_SIGNALS:
    void stateChanged();
    void chosen(const QString &conversationId, const QString &messageId, const QString &query);

private:
    QCoro::Task<> ask(bool further);
    void show(const ConversationSearch::Page &page, bool further);
    /// Makes the rows those of `hits`, and touches only what differs, so that nobody's reading is disturbed.
    void become(const QList<ConversationSearchHit> &hits);
    /// Lets go of what was asked before.
    quint64 askAnew();
    void clear();

    ConversationSearch &m_search;
    QString m_query;
    QList<ConversationSearchHit> m_hits;
    int m_current = -1;
    qint64 m_total = 0;
    bool m_more = false;
    qint64 m_reached = 0; ///< with more: below which place it is
    bool m_fetching = false;
    QString m_status;
    quint64 m_asked = 0; ///< counts the questions
    std::stop_source m_stop;
    QTimer m_soon;
    QTimer m_again; ///< more conversations have become known
};

} // namespace lmp
