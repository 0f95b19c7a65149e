#pragma once

#include "screens/chat/ChatFind.h"

#include <QColor>
#include <QPointer>
#include <QQuickItem>
#include <QTimer>

namespace lmp {

/// Marks what is looked for in the texts that are in sight, as they come and go, and more strongly in the message that
/// is shown.
///
/// Made by the transcript, UI thread; the items right below `within` are the messages. While the bar is open it looks
/// at the items below `within` a few times a second, since texts are made as the view comes near them; closed, it costs
/// nothing and leaves nothing behind. Code keeps the colours of its language and is not marked.
class FindMarks : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem *within MEMBER m_within)
    Q_PROPERTY(lmp::ChatFind *find READ find WRITE setFind NOTIFY findChanged)
    Q_PROPERTY(QColor background MEMBER m_background NOTIFY coloursChanged)
    Q_PROPERTY(QColor ink MEMBER m_ink NOTIFY coloursChanged)
    /// The same in the message that is shown.
    Q_PROPERTY(QColor currentBackground MEMBER m_currentBackground NOTIFY coloursChanged)
    Q_PROPERTY(QColor currentInk MEMBER m_currentInk NOTIFY coloursChanged)
public:
    explicit FindMarks(QObject *parent = nullptr);

    ChatFind *find() const { return m_find; }
    void setFind(ChatFind *find);
    /// Where below the top of `row` its first match is; -1 when none is there yet.
    Q_INVOKABLE qreal matchTop(QQuickItem *row);

Q_SIGNALS:
    void findChanged();
    void coloursChanged();

private:
    void update();
    void mark();
    void markMessage(QQuickItem *message, const SearchTerms &terms, bool current);

    QPointer<QQuickItem> m_within;
    QPointer<ChatFind> m_find;
    QColor m_background;
    QColor m_ink;
    QColor m_currentBackground;
    QColor m_currentInk;
    QTimer m_timer;
};

} // namespace lmp
