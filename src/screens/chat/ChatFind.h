#pragma once

#include "conversation/SearchTerms.h"

#include <QObject>
#include <QtQmlIntegration>

namespace lmp {

class ConversationSession;

/// Finding in the open conversation: which messages hold what is looked for, and which of them is shown.
///
/// Part of a ChatModel, UI thread; the session outlives it. It looks at what is open, in memory, so an incognito
/// conversation can be looked through as well. Nothing fails.
class ChatFind : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a ChatModel")
    Q_PROPERTY(bool open READ isOpen NOTIFY changed)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY changed)
    Q_PROPERTY(int count READ count NOTIFY changed)
    /// The message that is shown; empty when nothing is found.
    Q_PROPERTY(QString currentId READ currentId NOTIFY changed)
    /// How many messages there are and which of them it is, in words.
    Q_PROPERTY(QString statusText READ statusText NOTIFY changed)
public:
    explicit ChatFind(ConversationSession &session, QObject *parent = nullptr);

    bool isOpen() const { return m_open; }
    const QString &text() const { return m_text; }
    void setText(const QString &text);
    int count() const { return int(m_found.size()); }
    QString currentId() const { return m_found.value(m_current); }
    QString statusText() const;
    const SearchTerms &terms() const { return m_terms; }

    /// Opens the bar with what was looked for last.
    Q_INVOKABLE void begin();
    /// Opens it with `text`, at the message `messageId`.
    void beginAt(const QString &text, const QString &messageId);
    Q_INVOKABLE void close();
    /// To the match above or below; past the last one it begins again at the other end.
    Q_INVOKABLE void previous() { step(-1); }
    Q_INVOKABLE void next() { step(1); }

Q_SIGNALS:
    void changed();
    /// The bar is to have the keyboard.
    void focusAsked();
    /// The message is to be brought into sight.
    void goTo(const QString &messageId);

private:
    void step(int by);
    /// Looks again. The current message stays if it still is one; else it is the last.
    void look(const QString &current);
    void onOpened();

    ConversationSession &m_session;
    bool m_open = false;
    QString m_text;
    QString m_conversationId;
    SearchTerms m_terms;
    QStringList m_folded; ///< the messages, folded; empty until they are needed
    QStringList m_found;  ///< ids of the messages, oldest first
    qsizetype m_current = -1;
};

} // namespace lmp
