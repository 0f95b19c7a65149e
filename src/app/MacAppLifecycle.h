#pragma once

#include "app/MacQuitCoordinator.h"
#include "platform/SignalWatcher.h"

#include <optional>

namespace lmp {

/// Turns every way to end the program into one request to the quit coordinator: the menu, the last window, a signal,
/// and whatever else asks Qt to quit, as the end of the desktop session does.
///
/// After the answer a signal is the system's again: whoever sends another one does not want to wait for what still
/// hangs. One for the process, made after the QCoreApplication; UI thread. Whoever owns it exits on the coordinator's
/// `terminationAllowed`, with QCoreApplication::exit.
class MacAppLifecycle : public QObject {
    Q_OBJECT
public:
    /// @param coordinator outlives this
    explicit MacAppLifecycle(MacQuitCoordinator &coordinator, QObject *parent = nullptr);

    /// The menu's command.
    Q_INVOKABLE void quit();
    /// The last window is about to close.
    /// @return true when it may. Otherwise it stays until the answer: a warning needs a window to be shown in.
    Q_INVOKABLE bool mayCloseLastWindow();
    /// The desktop session wants everything saved (QGuiApplication::commitDataRequest). It may go on all the same: that
    /// is asked for a checkpoint too, and any program can call off a logout. Saving has begun when this returns; a real
    /// end comes as a quit or a signal.
    void saveForSession();

protected:
    /// Holds back Qt's own quitting until the coordinator allows it.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    MacQuitCoordinator &m_coordinator;
    std::optional<SignalWatcher> m_signals{std::in_place}; ///< until the answer
};

} // namespace lmp
