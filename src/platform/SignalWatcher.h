#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace lmp {

/// Turns SIGINT, SIGTERM, SIGHUP and SIGQUIT into a Qt signal, so that they are handled between events and not inside
/// one.
///
/// One for the process, UI thread; the former handlers come back with its end. A signal that was ignored stays so.
class SignalWatcher : public QObject {
    Q_OBJECT
public:
    explicit SignalWatcher(QObject *parent = nullptr);
    ~SignalWatcher() override;

Q_SIGNALS:
    void caught(int signal);

private:
    int m_pipe[2];
    QSocketNotifier m_notifier;
};

} // namespace lmp
