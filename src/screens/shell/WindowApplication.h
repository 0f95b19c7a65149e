#pragma once

#include "app/Application.h"
#include "app/MacAppLifecycle.h"
#include "app/SingleInstance.h"
#include "screens/shell/AppearanceModel.h"
#include "screens/shell/CaretRest.h"
#include "screens/shell/IdleIncubation.h"
#include "screens/shell/PreloadedPane.h"
#include "screens/shell/WindowOptions.h"

#include <QQmlEngine>
#include <QSet>

class QQuickWindow;
class QSessionManager;

namespace lmp {

class WindowScene;
struct SharedModels;

/// One run of the program with windows: shows the first at once, opens the service behind it, and ends when the person
/// has left and what they typed is saved.
///
/// Owned by main, UI thread; made after the QGuiApplication. What goes wrong is said in the window.
class WindowApplication : public QObject {
    Q_OBJECT
public:
    WindowApplication(WindowOptions options, std::chrono::nanoseconds processStartAt);
    ~WindowApplication() override;

    /// Shows the first window as soon as it has been read, and in it the link that the program was started with.
    /// Where there can be no window the program ends with 1.
    void start();
    /// Follows what a second start hands over: its link, and to the front.
    void takeOver(const SingleInstance::Handover &handover);

    /// Once it has `left`: a file could not be written in time and may never be. The process has to end without taking
    /// anything down, which would wait for it.
    bool gaveUp() const { return m_gaveUp; }
    MacQuitCoordinator &quitting() { return m_quitting; }
    Application &application() { return m_application; }
    AppearanceModel &appearance() { return m_appearance; }
    /// The window that was made last, and its scene; null when there is none.
    QQuickWindow *window() const;
    WindowScene *scene() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// The program closes down: the next start is the first one again.
    void leaving();
    /// All that it had to write and to send is done, or was given up: the program ends.
    void left();

private:
    struct Shown {
        std::unique_ptr<WindowScene> scene;
        std::unique_ptr<QQuickWindow> window;
    };

    void openFirstWindow();
    WindowScene *openWindow();
    /// Shows a window as soon as it is known who is there, and no later than one would miss it.
    void showWhenKnown(QQuickWindow &window, WindowScene &scene);
    void join(WindowScene *scene);
    QCoro::Task<> open();
    QCoro::Task<> leave();
    void onFirstFrame();
    /// What there is to use, and whether there is a newer program. The shell shows it; to sign in takes neither, and
    /// nobody waits for them.
    void askForNews();
    void askForWhoCameIn();
    /// Ends the program as the person asked, once they have let go of every conversation that nobody keeps. A signal
    /// and the end of the session do not wait for an answer, and come in another way.
    void quit(QSet<WindowScene *> asked = {});
    void onCloseRequested(WindowScene *scene);
    void goOnClosing(WindowScene *scene);
    /// The command that the toolkit gives a desktop to bring the program back is not one of ours.
    void tellSession(QSessionManager &session) const;
    /// Many keyboards have no menu key: Shift+F10 is the same one, for whatever item has the keyboard.
    bool pressesMenuKey(QObject *watched, QEvent *event);
    void onReadyToClose(WindowScene *scene);
    void close(WindowScene *scene);
    /// Picks the window that the program's questions are asked in: one of them.
    void ask();
    void raise(const QString &activationToken = {});
    static void bringUp(QQuickWindow &window);
    const Shown *front() const;
    void openLink(const QString &link);
    static Application::Options options(const WindowOptions &options, std::chrono::nanoseconds processStartAt);

    WindowOptions m_options;
    std::chrono::nanoseconds m_processStartAt;
    std::unique_ptr<Settings> m_settings;
    IdleIncubation m_incubation;
    QQmlEngine m_engine;
    PreloadedPane m_firstPane; ///< before the rest: another thread reads while that is being made
    AppearanceModel m_appearance;
    CaretRest m_caretRest;
    Application m_application;
    MacQuitCoordinator m_quitting;
    MacAppLifecycle m_macLifecycle;
    std::unique_ptr<SharedModels> m_shared; ///< once it is open
    bool m_opening = false;
    bool m_leaving = false;
    bool m_gaveUp = false;
    bool m_drawn = false;        ///< something was to be seen
    QString m_openError;         ///< why the service was not found; for windows that open after that
    bool m_expectsShell = false; ///< what m_firstPane has guessed
    std::vector<Shown> m_windows;
};

} // namespace lmp
