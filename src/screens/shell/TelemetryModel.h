#pragma once

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

namespace lmp {

class Telemetry;

/// The person's word on product analytics, asked for once and changed in the settings.
///
/// One for the process, shared by its windows, UI thread. In a run without telemetry there is nothing to ask.
class TelemetryModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")
    Q_PROPERTY(bool available READ available CONSTANT)
    Q_PROPERTY(bool consent READ consent WRITE setConsent NOTIFY changed)
    Q_PROPERTY(bool asking READ asking NOTIFY changed)
public:
    /// @param telemetry may be null; outlives the model otherwise
    explicit TelemetryModel(Telemetry *telemetry, QObject *parent = nullptr);

    bool available() const { return !m_telemetry.isNull(); }
    bool consent() const;
    void setConsent(bool consent);
    /// The question has not been answered yet.
    bool asking() const;
    /// The answer to the question, which is not asked again.
    Q_INVOKABLE void answer(bool consent);

Q_SIGNALS:
    void changed();

private:
    QPointer<Telemetry> m_telemetry;
};

} // namespace lmp
