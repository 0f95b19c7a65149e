#pragma once

#include "conversation/ConversationSession.h"
#include "platform/Clock.h"
#include "screens/chat/MessageRow.h"
#include "screens/markdown/MarkdownBlockModel.h"

#include <QAbstractListModel>
#include <QtQmlIntegration>

#include <stop_token>

namespace lmp {

class ChatWithTwinView;

/// The messages of the open conversation, oldest first: a window of it that stays small however long it is.
///
/// Owned by the chat's model; session, view and clock outlive it. UI thread; nothing fails. While a reply grows its
/// `blocks` grow with it, at most 30 times a second and at the price of the new piece; its `text` is announced only
/// where no blocks were asked for, and once when the reply has ended.
class MessageListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a ChatModel")
    Q_PROPERTY(int count READ count NOTIFY windowChanged)
    /// The window reaches the first or the last message.
    Q_PROPERTY(bool atStart READ atStart NOTIFY windowChanged)
    Q_PROPERTY(bool atEnd READ atEnd NOTIFY windowChanged)
    /// Of the whole conversation.
    Q_PROPERTY(int total READ total NOTIFY windowChanged)
public:
    enum State { Delivered, Pending, Unknown, Failed, Stopped };
    Q_ENUM(State)
    enum Role {
        MessageIdRole = Qt::UserRole + 1, ///< messageId: QString
        SpeakerRole,                      ///< role: "user" or "twin"
        TextRole,                         ///< text: QString
        BlocksRole,                       ///< blocks: MarkdownBlockModel*, of a reply; else null
        TimeTextRole,                     ///< timeText: QString, empty when the time is not known
        StateRole,                        ///< state: State
        StateTextRole,                    ///< stateText: QString, empty when there is nothing to say
        ErrorTextRole,                    ///< errorText: QString, what went wrong with this message
        RetryOfferedRole,                 ///< retryOffered: bool
        ReopenOfferedRole,                ///< reopenOffered: bool, what became of another answer is seen by reopening
        RetryTextRole,                    ///< retryText: QString
        RetryBusyRole,                    ///< retryBusy: bool, another answer is under way
        StreamingRole,                    ///< streaming: bool, the reply grows
        UsedCountRole,                    ///< usedCount: int, memories the reply drew on
        UsedTextRole,                     ///< usedText: QString, empty when there are none
        FeedbackRole,                     ///< feedback: "positive", "negative" or empty
        ChargeTextRole,                   ///< chargeText: QString; "—" after a turn whose charge is not known
        GroupedRole,                      ///< grouped: bool, the message before it is of the same speaker
    };
    /// Rows of a fresh window, rows fetched at once, and the most a window keeps when it is fetched into.
    static constexpr qsizetype firstRows = 60;
    static constexpr qsizetype pageRows = 40;
    static constexpr qsizetype maxRows = 200;

    MessageListModel(ConversationSession &session, ChatWithTwinView &view, Clock &clock, QObject *parent = nullptr);
    ~MessageListModel() override;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_rows.size()); }
    int total() const { return int(m_total); }
    bool atStart() const { return m_first == 0; }
    bool atEnd() const { return m_first + m_rows.size() == m_total; }
    /// Moves the window by a page. Rows far from there leave it.
    Q_INVOKABLE void fetchOlder();
    Q_INVOKABLE void fetchNewer();
    /// Puts the window at the end, where it follows what comes.
    Q_INVOKABLE void jumpToLatest();
    /// Puts the window around a message, where it is not there yet. @return its row, or -1
    Q_INVOKABLE int bringIn(const QString &messageId);
    /// The row of a message, or -1 when it is not in the window.
    Q_INVOKABLE int rowOf(const QString &messageId) const;
    /// The blocks of a reply, made when they are first asked for; null for any other message.
    Q_INVOKABLE lmp::MarkdownBlockModel *blocksFor(const QString &messageId);

    // What this window knows beyond the conversation itself; all of it ends with the conversation.
    void setError(const QString &messageId, const QString &text);
    void setCharge(const QString &messageId, const QString &text);
    void setStopped(const QString &messageId);
    /// Whether another answer came, and what it cost, is not known: none is offered until the conversation is read
    /// anew.
    void setUnconfirmed(const QString &messageId);
    /// The message that another answer is under way for, or empty.
    void setRetrying(const QString &messageId);
    /// The reply to a message, or the message itself while it has none: where the end of its turn is told.
    QString lastOfTurn(const QString &userMessageId) const;

Q_SIGNALS:
    void windowChanged();
    /// The reply in the last row has grown.
    void grew();

private:
    struct Mark {
        QString error;
        QString charge;
        QDateTime at; ///< when the message came into being here; invalid when it was opened
        bool stopped = false;
        bool unconfirmed = false;
    };

    static State stateOf(const MessageRow &row, const Mark &mark);
    static QString stateTextOf(const MessageRow &row, const Mark &mark);
    bool offersRetry(const MessageRow &row, const Mark &mark) const;
    void reset();
    /// Begins anew at `first`, or at the end, with what is known of the messages.
    void restart(qsizetype first = -1);
    void onChanged();
    void onStateChanged();
    void updateGrowing();
    MessageRow rowAt(qsizetype index) const;
    void fill(qsizetype first);
    void extend(qsizetype end);
    void drop(qsizetype row, qsizetype count);
    void replace(qsizetype row, MessageRow now);
    void announce(const QString &messageId, const QList<int> &roles);
    QString growingText() const;
    MarkdownBlockModel *blocksOf(qsizetype row) const;
    void forgetBlocks(qsizetype index);
    void flushSoon();
    void flush();
    QCoro::Task<> flushLater(std::chrono::milliseconds wait, std::stop_token stop);

    ConversationSession &m_session;
    ChatWithTwinView &m_view;
    Clock &m_clock;
    qsizetype m_first = 0; ///< of the window, in the conversation
    qsizetype m_total = 0;
    QList<MessageRow> m_rows;
    QString m_growingId;
    mutable qsizetype m_fed = 0; ///< how much of the growing reply its blocks have
    QHash<QString, Mark> m_marks;
    QMap<QString, QString> m_feedback;
    QString m_retrying;
    /// By the place in the conversation; made when a row is first shown.
    mutable QHash<qsizetype, MarkdownBlockModel *> m_blocks;
    std::optional<std::chrono::nanoseconds> m_flushedAt;
    bool m_flushWaits = false;
    std::stop_source m_stop;
};

} // namespace lmp
