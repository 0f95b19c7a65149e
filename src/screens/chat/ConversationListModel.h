#pragma once

#include "conversation/ConversationDraftCache.h"
#include "conversation/ConversationService.h"
#include "platform/OneThread.h"
#include "screens/chat/ChatServices.h"
#include "screens/chat/ConversationRow.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QSet>
#include <QtQmlIntegration>

namespace lmp {

class Application;
class ChatModel;

/// The conversations of the signed-in account, the latest first, with what this machine alone holds of them.
///
/// One for each window, owned by its scene; the application outlives it. UI thread. A refresh that fails keeps the
/// list and says so in `errorText`; the list of one account is never shown to another.
class ConversationListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the window's scene")
    Q_PROPERTY(bool loading READ loading NOTIFY stateChanged)
    /// Why the list is not up to date; empty when it is. `refresh` is the action.
    Q_PROPERTY(QString errorText READ errorText NOTIFY stateChanged)
    /// Something that did not fail and is worth knowing: drafts that could not be read.
    Q_PROPERTY(QString notice READ notice NOTIFY stateChanged)
    /// There are no conversations; false while that is not known.
    Q_PROPERTY(bool empty READ empty NOTIFY stateChanged)
    /// There are conversations, and none that matches `findText`.
    Q_PROPERTY(bool noneFound READ noneFound NOTIFY stateChanged)
    Q_PROPERTY(int count READ count NOTIFY stateChanged)
    Q_PROPERTY(QString findText READ findText WRITE find NOTIFY stateChanged)
    Q_PROPERTY(QString selectedId READ selectedId WRITE select NOTIFY selectedIdChanged)
public:
    enum Role {
        ConversationIdRole = Qt::UserRole + 1, ///< conversationId: QString
        TitleRole,                             ///< title: QString
        SubtitleRole,                          ///< subtitle: QString, may be empty
        TimeTextRole,                          ///< timeText: QString, empty when the time is not known
        SelectedRole,                          ///< selected: bool
        UnreadRole,                            ///< unread: int
        DraftRole,                             ///< draft: bool, this machine holds something that is not sent or saved
        WaitingTextRole,                       ///< waitingText: QString
    };

    explicit ConversationListModel(Application &application, QObject *parent = nullptr);
    explicit ConversationListModel(ChatServices services, QObject *parent = nullptr);
    ~ConversationListModel() override;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    bool loading() const { return m_loading; }
    const QString &errorText() const { return m_errorText; }
    const QString &notice() const { return m_notice; }
    bool empty() const { return m_loaded && m_all.isEmpty(); }
    bool noneFound() const { return !m_all.isEmpty() && m_shown.isEmpty(); }
    int count() const { return int(m_shown.size()); }
    const QString &findText() const { return m_findText; }
    const QString &selectedId() const { return m_selectedId; }

    /// Asks the service and this machine's drafts anew. One asked for while one is under way follows it.
    Q_INVOKABLE void refresh();
    /// Shows only the titles that contain `text`, of one character or more; all for an empty one.
    Q_INVOKABLE void find(const QString &text);
    Q_INVOKABLE void select(const QString &conversationId);
    /// The shown conversation before (-1) or after (1) the selected one; empty when there is none.
    Q_INVOKABLE QString neighbour(int step) const;
    /// Marks the conversation that `chat` has open, and refreshes when it has saved one.
    Q_INVOKABLE void follow(lmp::ChatModel *chat);
    /// To be called when somebody else may be signed in.
    void recheckAccount();

Q_SIGNALS:
    void stateChanged();
    void selectedIdChanged();

private:
    /// What this machine alone holds.
    struct Local {
        QList<ConversationRow> rows;  ///< conversations, newest first
        QList<ConversationRow> texts; ///< what stands in input boxes, newest first
        QSet<QString> unsent;         ///< the conversations with something in theirs
        QStringList notices;          ///< what could not be read, a sentence each

        static Local read(const ConversationDraftCache &drafts, const ConversationInputDraftStore &inputs,
                          const std::optional<QString> &account);
    };

    QCoro::Task<> load();
    QCoro::Task<> readLocal();
    void rebuild();
    /// Of what was typed, what belongs to none of the conversations `listed`, nor to one that is open: those that were
    /// never begun, and those that nobody has any more.
    QList<ConversationRow> textsBeside(const QList<ConversationRow> &listed) const;
    void show();
    /// Makes `wanted` the shown row `row`; the rows before it are right.
    void place(qsizetype row, const ConversationRow &wanted);
    void onChatChanged();
    /// Somebody made the open one elsewhere since the list was read: once more, and once for each such one.
    void readUnlisted();

    ChatServices m_services;
    QString m_owner;                           ///< the account and sign-in that the rows are of
    quint64 m_generation = 0;                  ///< counts the owners
    QString m_unlisted;                        ///< the last one that the list was read again for
    QList<ConversationSummaryDTO> m_summaries; ///< as the service said last
    Local m_local;
    QHash<QString, QDateTime> m_savedAt; ///< by this window
    QString m_openId;                    ///< of what the followed chat has open
    ConversationRow m_open;              ///< the same as a row, once it has messages
    QList<ConversationRow> m_all;
    QList<ConversationRow> m_shown;
    QString m_findText;
    QString m_selectedId;
    QString m_errorText;
    QString m_notice;
    bool m_loading = false;
    bool m_again = false;
    bool m_loaded = false; ///< the service has answered once
    QPointer<ChatModel> m_chat;
    OneThread m_files; ///< in order, so that what was read last is what is newest
};

} // namespace lmp
