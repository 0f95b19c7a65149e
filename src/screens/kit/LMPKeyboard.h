#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// Who has the keyboard of a window.
///
/// Free of state, UI thread. The toolkit names nobody while the window is not in front, though it knows who has the
/// keyboard when it comes there again.
class LMPKeyboard : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    using QObject::QObject;

    /// @return what has it, or will have it, in the window of `item`; null where nothing has
    Q_INVOKABLE static QQuickItem *holder(const QQuickItem *item);
};

} // namespace lmp
