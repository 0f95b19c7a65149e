#pragma once

#include "conversation/ConversationAccount.h"
#include "conversation/ConversationDraftCache.h"
#include "conversation/ConversationSearchIndex.h"
#include "conversation/ConversationService.h"
#include "platform/Clock.h"
#include "platform/OneThread.h"

#include <QObject>
#include <QPointer>

namespace lmp {

class ConversationSession;

/// Finds messages in all conversations of the signed-in account: keeps this machine's index of them, feeds it with what
/// is opened and saved, and fetches in the background what it does not have.
///
/// One for the program, owned by the application; UI thread, which never waits for the disk: the index has a thread of
/// its own. Each account has a file of its own, and what arrives late for another account is dropped. A damaged file
/// is thrown away and filled again. Incognito conversations are not fed.
class ConversationSearch : public QObject {
    Q_OBJECT
public:
    using Page = ConversationSearchIndex::Page;
    /// How much of what there is can be found.
    struct Coverage {
        qsizetype indexed = 0;
        qsizetype total = 0;
        bool known = false;   ///< the service has said which conversations there are
        bool working = false; ///< more is being read
        QString trouble;      ///< why it is not
        bool complete() const { return known && indexed == total; }
        /// The sentence under the results; empty when everything can be found.
        QString text() const;
        bool operator==(const Coverage &) const = default;
    };
    /// Where the files of the index are, below the application's own folder.
    static constexpr QStringView folderName = u"ConversationSearch";

    /// @param scope sets apart the services whose accounts may have the same ids
    ConversationSearch(ConversationService service, ConversationDraftCache drafts, ConversationAccount account,
                       ApplicationSupport support, QString scope, Clock &clock, QObject *parent = nullptr);
    ~ConversationSearch() override;

    /// The latest messages that hold every word of `typed`, below the place `below` if that is given; on failure the
    /// sentence shown.
    /// @param stop nobody wants to know any more: it ends soon, with what was found by then
    QCoro::Task<std::expected<Page, QString>> find(QString typed, std::optional<qint64> below = {},
                                                   qsizetype limit = 50, std::stop_token stop = {});

    /// Keeps the index up to what `session` opens and saves, for as long as that lives.
    void follow(ConversationSession *session);
    /// Asks which conversations there are and fetches those that are missing, one after another with a pause between
    /// them. One that is under way goes on.
    void refresh();
    /// The same without pauses, for somebody who waits. Ends when nothing more can be fetched now.
    QCoro::Task<> catchUp();
    /// Fetching waits while anybody holds it back: a reply is on its way.
    void holdBack(const QObject *holder, bool held);
    /// Removes a conversation; it does not come back while this program runs, and is not found from now on.
    void forget(const QString &conversationId);

    const Coverage &coverage() const { return m_coverage; }
    /// To be called when somebody else may be signed in.
    void recheckAccount();

Q_SIGNALS:
    void coverageChanged();
    /// Somebody else is signed in: what was found is nobody's business now.
    void accountChanged();

private:
    using Age = ConversationSearchIndex::Age;
    using Fault = ConversationSearchIndex::Fault;

    template <class F>
    auto onIndex(F work);
    void open();
    QCoro::Task<std::expected<Page, Fault>> look(SearchTerms terms, std::optional<qint64> below, qsizetype limit,
                                                 std::stop_token stop);
    void take(const ConversationSession &session);
    QCoro::Task<> feed();
    QCoro::Task<> fetchAll(std::chrono::milliseconds pause);
    /// @return how many could not be fetched, one after another, at the end
    QCoro::Task<int> fetchWanted(std::chrono::milliseconds pause);
    QCoro::Task<bool> compare();
    QCoro::Task<bool> plan(QList<ConversationSummaryDTO> listed, QSet<QString> local);
    QCoro::Task<bool> fetch(QString id, Age age);
    QCoro::Task<bool> idle(std::chrono::milliseconds pause);
    QCoro::Task<bool> put(ConversationDTO conversation, Age age, bool live);
    QCoro::Task<> startAgain();
    QCoro::Task<> removeNow(QString id);
    QCoro::Task<> tidy(std::chrono::milliseconds pause);
    bool mayFetch(const QString &id) const;
    void settle(const QString &id);
    void count();
    void setTrouble(const QString &trouble);

    ConversationService m_service;
    ConversationDraftCache m_drafts;
    ConversationAccount m_account;
    ApplicationSupport m_support;
    QString m_scope;
    Clock &m_clock;

    QString m_owner;
    quint64 m_generation = 0;                         ///< counts the owners
    std::shared_ptr<ConversationSearchIndex> m_index; ///< null while nobody is signed in
    QHash<QString, ConversationDTO> m_waiting;        ///< opened or saved, not yet in the index
    QSet<QString> m_fresh;                            ///< seen by ourselves since the service was asked last
    QSet<QString> m_forgotten;
    QSet<QString> m_known, m_missing;
    QStringList m_wanted; ///< the missing in the order in which they are fetched
    QSet<const QObject *> m_holders;
    Coverage m_coverage;
    bool m_feeding = false;
    bool m_tidying = false;
    bool m_again = false; ///< the index has begun anew while it was being filled
    int m_restarts = 0;
    std::stop_source m_stop;
    OneThread m_pool;
};

} // namespace lmp
