#pragma once

#include "screens/chat/ChatModel.h"
#include "screens/chat/ConversationListModel.h"

#include "support/StubServer.h"

#include <QPointer>
#include <QTemporaryDir>

namespace lmp {

/// The real chat over a service that does as the test says; what the tests in QML call `stage`.
class ChatStage : public QObject {
    Q_OBJECT
    Q_PROPERTY(lmp::ChatModel *chat READ chat NOTIFY restarted)
    Q_PROPERTY(lmp::ConversationListModel *conversations READ conversations NOTIFY restarted)
    Q_PROPERTY(QString clipboard READ clipboard)
    Q_PROPERTY(QStringList openedLinks READ openedLinks)
    /// How often the open conversation was saved at the service.
    Q_PROPERTY(int saves READ saves NOTIFY saved)
public:
    ChatStage();
    ~ChatStage() override;

    ChatModel *chat() const { return m_chat.get(); }
    ConversationListModel *conversations() const { return m_conversations.get(); }
    static QString clipboard();
    QStringList openedLinks() const;
    int saves() const { return m_saves; }

    /// Lets everything under way end.
    void finish();
    /// A fresh service and fresh models, with nothing open.
    Q_INVOKABLE void restart();
    /// How requests of a path below the API are answered from now on; a status of 0 breaks the connection.
    Q_INVOKABLE void answer(const QString &path, int status, const QString &body);
    /// Turns are answered by streams that `push` fills and `endStream` ends.
    Q_INVOKABLE void answerByStream();
    /// @param frame JSON of one event
    Q_INVOKABLE void push(const QString &frame);
    Q_INVOKABLE void endStream(bool broken = false);
    /// How many requests of the path have come.
    Q_INVOKABLE int requests(const QString &path) const;
    /// A conversation of so many messages for `load`, the user's and the twin's in turn.
    Q_INVOKABLE void serveLong(const QString &id, int count);
    /// A conversation of the messages given as JSON.
    Q_INVOKABLE void serve(const QString &id, const QString &messages);

Q_SIGNALS:
    void restarted();
    void saved();

private:
    class Opener;

    std::unique_ptr<StubServer> m_server;
    std::unique_ptr<QTemporaryDir> m_folder;
    SafetyGateStore m_safety;
    std::unique_ptr<Opener> m_opener;
    std::unique_ptr<Clock> m_clock;
    std::unique_ptr<ConversationListModel> m_conversations;
    std::unique_ptr<ChatModel> m_chat;
    QPointer<QTcpSocket> m_stream;
    int m_saves = 0;
};

} // namespace lmp
