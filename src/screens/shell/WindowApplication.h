#pragma once

#include "app/Application.h"
#include "screens/shell/AppearanceModel.h"
#include "screens/shell/WindowOptions.h"

#include <QQmlEngine>

class QQmlComponent;
class QQuickWindow;

namespace lmp {

class WindowScene;

/// One run of the program with windows: shows the first at once, opens the service behind it, and ends when the person
/// has left.
///
/// Owned by main, UI thread; made after the QGuiApplication. What goes wrong is said in the window.
class WindowApplication : public QObject {
    Q_OBJECT
public:
    WindowApplication(WindowOptions options, std::chrono::nanoseconds processStart);
    ~WindowApplication() override;

    /// Runs the event loop until the person has left. @return the process's exit status
    int run();
    /// One window more.
    void openWindow();

private:
    struct Shown {
        std::unique_ptr<WindowScene> scene;
        std::unique_ptr<QQuickWindow> window;
    };

    QCoro::Task<> open();
    void onFirstFrame();
    static Application::Options options(const WindowOptions &options, std::chrono::nanoseconds processStart);

    WindowOptions m_options;
    std::chrono::nanoseconds m_processStart;
    std::unique_ptr<Settings> m_settings;
    AppearanceModel m_appearance;
    Application m_application;
    bool m_isOpen = false;
    bool m_opening = false;
    QQmlEngine m_engine;
    std::unique_ptr<QQmlComponent> m_windowType;
    std::vector<Shown> m_windows;
};

} // namespace lmp
