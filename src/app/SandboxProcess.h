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
/// killed. Settles exactly once, with its address or with a reason fit to be shown.
class SandboxProcess : public QObject {
    Q_OBJECT
public:
    /// @param stateFile the service's database; its folder must exist
    explicit SandboxProcess(QString stateFile, QObject *parent = nullptr);
    ~SandboxProcess() override;

    /// @return the service's address, or why there is none
    Later<std::expected<QUrl, QString>> start();

private:
    void onOutput();
    QString m_stateFile;
    QProcess m_process;
    Later<std::expected<QUrl, QString>> m_address;
};

} // namespace lmp
