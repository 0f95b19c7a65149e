#pragma once

#include "conversation/ChatWithTwinView.h"
#include "platform/ExternalOpener.h"
#include "screens/chat/UsedMemoryModel.h"

#include <QUrl>

namespace lmp {

/// What a person does with a message: says what they think of it, copies it, opens its links and looks at the memories
/// it drew on.
///
/// Part of the chat's model; session, view and opener outlive it. UI thread. A link that is not opened is told in
/// `linkNotice`; what the service makes of an opinion is told by the view.
class MessageDeeds : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a ChatModel")
    Q_PROPERTY(lmp::UsedMemoryModel *usedMemories READ usedMemories CONSTANT)
    Q_PROPERTY(bool usedOpen READ usedOpen NOTIFY changed)
    /// The reply that is asked about; empty when none is.
    Q_PROPERTY(QString reasonsOpenFor READ reasonsOpenFor NOTIFY changed)
    /// What `dislike` takes, in the order of presentation, and how each reads.
    Q_PROPERTY(QStringList feedbackReasons READ feedbackReasons CONSTANT)
    Q_PROPERTY(QStringList feedbackReasonTexts READ feedbackReasonTexts CONSTANT)
    /// Why a link was not opened, until it is closed.
    Q_PROPERTY(QString linkNotice READ linkNotice NOTIFY linkNoticeChanged)
public:
    MessageDeeds(ConversationSession &session, ChatWithTwinView &view, ExternalOpener *opener,
                 QObject *parent = nullptr);

    UsedMemoryModel *usedMemories() { return &m_used; }
    bool usedOpen() const { return m_view.showUsed().has_value(); }
    QString reasonsOpenFor() const { return m_view.reasonsOpenFor().value_or(QString()); }
    QStringList feedbackReasons() const { return ChatWithTwinView::feedbackReasons(); }
    QStringList feedbackReasonTexts() const;
    const QString &linkNotice() const { return m_linkNotice; }

    Q_INVOKABLE void like(const QString &messageId) { m_view.likeReply(messageId); }
    Q_INVOKABLE void openReasons(const QString &messageId) { m_view.openReasons(messageId); }
    Q_INVOKABLE void dislike(const QString &messageId, const QString &reason) {
        m_view.dislikeReply(messageId, reason);
    }
    Q_INVOKABLE void closeReasons() { m_view.closeReasons(); }
    Q_INVOKABLE void openUsed(const QString &messageId) { m_view.openUsed(messageId); }
    Q_INVOKABLE void closeUsed() { m_view.closeUsed(); }
    Q_INVOKABLE void copyText(const QString &text);
    Q_INVOKABLE void copyMessage(const QString &messageId);
    /// Hands http and https links to the browser; any other is refused with `linkNotice`.
    Q_INVOKABLE bool openLink(const QUrl &link);
    Q_INVOKABLE void closeLinkNotice();

    /// Somebody else is signed in: what was looked at is not theirs.
    void forget() { m_used.show({}); }

Q_SIGNALS:
    void changed();
    void linkNoticeChanged();

private:
    void onViewChanged();

    ConversationSession &m_session;
    ChatWithTwinView &m_view;
    ExternalOpener *m_opener;
    UsedMemoryModel m_used;
    QString m_linkNotice;
};

} // namespace lmp
