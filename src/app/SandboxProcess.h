#pragma once

#include <QObject>
#include <QProcess>
#include <QUrl>

#include <expected>
#include <optional>

namespace lmp {

/// The loopback service that comes with the program, started for it and ended with it.
///
/// Owned by the application, UI thread. The child watches its standard input, so it ends even when this process is
/// killed. Settles exactly once, with its address or with a reason fit to be shown.
class SandboxProcess : public QObject {
    Q_OBJECT
public:
    /// @param stateFile the service's database; its folder must exist
    explicit SandboxProcess(QString stateFile, QObject *parent = nullptr);
    ~SandboxProcess() override;

    void start();
    /// The outcome, once there is one.
    const std::optional<std::expected<QUrl, QString>> &outcome() const { return m_outcome; }

Q_SIGNALS:
    void settled();

private:
    void onOutput();
    void settle(std::expected<QUrl, QString> outcome);

    QString m_stateFile;
    QProcess m_process;
    std::optional<std::expected<QUrl, QString>> m_outcome;
};

} // namespace lmp
