#pragma once

#include <QObject>
#include <QQuickItem>

namespace lmp {

/// Has a text editor draw only what is in view, so that a key costs the same in half a megabyte as in a line.
///
/// Qt does this by itself for a text that was set, not for one that was pasted or typed. Owned by the QML object that
/// declares it; UI thread; does not fail.
class LMPLongText : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem *editor READ editor WRITE setEditor REQUIRED)

public:
    using QObject::QObject;

    [[nodiscard]] QQuickItem *editor() const { return m_editor; }
    void setEditor(QQuickItem *editor) {
        m_editor = editor;
        if (m_editor)
            m_editor->setFlag(QQuickItem::ItemObservesViewport);
    }

private:
    QPointer<QQuickItem> m_editor;
};

} // namespace lmp
