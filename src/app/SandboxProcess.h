#pragma once

#include "core/Later.h"

#include <QObject>
#include <QProcess>
#include <QUrl>

#include <expected>

namespace lmp {

/// The loopback service that comes with the program, started for it and ended with it.
///
/// Owned by the application, UI thread. The child watches its standard input, so it ends even when this process is
/// killed. Settles exactly once, with its address or with a reason fit to be shown. Where it dies later, it is started
/// again at the same address, a few times: who cannot come back by itself must not be said to be out of reach for a
/// while.
class SandboxProcess : public QObject {
    Q_OBJECT
public:
    /// @param stateFile the service's database; its folder must exist
    explicit SandboxProcess(QString stateFile, QObject *parent = nullptr);
    ~SandboxProcess() override;

    /// @return the service's address, or why there is none
    Later<std::expected<QUrl, QString>> start();

private:
    static constexpr int mostRestarts = 5;

    void launch();
    void onOutput();
    void onFinished(int code);
    QString m_stateFile;
    QProcess m_process{this};
    int m_port = 0; ///< where it listens; 0 until it has said so, and then for good
    int m_restarts = 0;
    Later<std::expected<QUrl, QString>> m_address;
};

} // namespace lmp
