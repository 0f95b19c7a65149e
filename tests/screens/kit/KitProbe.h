#pragma once

#include <QAccessible>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QQuickItem>
#include <QQuickWindow>
#include <QVariantMap>

namespace lmp {

/// What a test in QML cannot do by itself: be an input method, and hear what a screen reader would.
class KitProbe : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// Shows `preedit` as an open composition in whatever has the keyboard; an empty one ends it and enters `commit`.
    Q_INVOKABLE static void compose(const QString &preedit, const QString &commit) {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(QGuiApplication::focusObject(), &event);
    }

    /// What a screen reader is told of `item`: role, name, description, and the states that matter here.
    Q_INVOKABLE static QVariantMap heard(QQuickItem *item) {
        QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(item);
        if (!interface || item->property("ignored").toBool())
            return {};
        const QAccessible::State state = interface->state();
        return {{QStringLiteral("role"), int(interface->role())},
                {QStringLiteral("name"), interface->text(QAccessible::Name)},
                {QStringLiteral("description"), interface->text(QAccessible::Description)},
                {QStringLiteral("checked"), bool(state.checked)},
                {QStringLiteral("selected"), bool(state.selected)}};
    }

    /// Everything below `root` that the Tab key can come to.
    Q_INVOKABLE static QList<QObject *> stops(QQuickItem *root) {
        QList<QObject *> found;
        for (QQuickItem *child : root->childItems()) {
            if (child->isVisible() && child->activeFocusOnTab())
                found.append(child);
            found.append(stops(child));
        }
        return found;
    }

    /// The first item below `root` whose type is called `type`, with these words if any are given.
    Q_INVOKABLE static QObject *inside(QQuickItem *root, const QString &type, const QString &text = {}) {
        for (QQuickItem *child : root->childItems()) {
            if (QString::fromLatin1(child->metaObject()->className()).startsWith(type) &&
                (text.isEmpty() || child->property("text") == text))
                return child;
            if (QObject *found = inside(child, type, text))
                return found;
        }
        return nullptr;
    }
};

} // namespace lmp
