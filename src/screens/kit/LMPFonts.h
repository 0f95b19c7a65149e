#pragma once

#include <QObject>
#include <QtQmlIntegration>

namespace lmp {

/// The families of type that screens are set in. UI thread, once there is an application.
class LMPFonts : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString family READ family CONSTANT)
    Q_PROPERTY(QString monoFamily READ monoFamily CONSTANT)

public:
    using QObject::QObject;

    /// Draws everything, Latin letters too: the first of those wished for that is installed, or else the system's own.
    static QString family();
    static QString monoFamily();
};

} // namespace lmp
