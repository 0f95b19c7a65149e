#pragma once

#include "screens/gallery/GalleryService.h"

#include <QQmlEngine>
#include <QQuickWindow>
#include <QVariantMap>

#include <QTemporaryDir>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace lmp {

class WindowApplication;
class WindowScene;

/// Where one scene of the gallery is set up: a service, the models over it, a window with the screen, and what has to
/// happen before the picture is taken.
///
/// One for each scene, owned by the run, UI thread. What does not come about in time is a fault of the scene.
class GalleryStage : public QObject {
    Q_OBJECT
public:
    /// @param engine outlives the stage
    GalleryStage(QQmlEngine &engine, QSize size);
    ~GalleryStage() override;

    GalleryService &service() { return m_service; }

    /// Starts the program as it is, over `service`, with a window of the scene's size.
    /// @param token of the session; signed out without one
    /// @param link that it is started with
    void run(const std::optional<QString> &token, const QString &link = {});
    /// The running program's; only after `run`.
    WindowApplication &program() { return *m_program; }
    WindowScene &scene();

    /// Shows an item of a built-in module, "Account/LaunchView", over a whole window of its own.
    void show(const QString &type, const QVariantMap &properties);

    /// Keeps a new object until the window is gone.
    template <class T, class... Arguments>
    T &make(Arguments &&...arguments) {
        auto object = std::make_shared<T>(std::forward<Arguments>(arguments)...);
        m_kept.push_back(object);
        return *object;
    }

    /// Does something, once everything before it has happened.
    void then(std::function<void()> act);
    /// Waits until `reached`. @param what for the person who reads that it never was
    void until(const QString &what, std::function<bool()> reached);
    /// Types `text` where the keyboard is, once it is in a field.
    void type(const QString &text);
    /// Presses the control with `text` that is in front, once there is one.
    void press(const QString &text);

    /// The window; null before one is shown.
    QQuickWindow *window() const;
    /// The engine of the window.
    QQmlEngine &engine();
    /// The first item of a type ("ChatPage", "LMPSheet") that is there and visible; null without one.
    QQuickItem *visibleItem(const QString &type) const;
    /// The control with `text` that is in front and can be used; null without one.
    QQuickItem *control(const QString &text) const;
    /// Puts the theme into a look, and the choices of the running program with it.
    void setLook(bool dark, qreal scale);

    /// Goes on with what was asked for. @return whether all of it has happened
    bool advance();
    /// What is waited for.
    QString waitingFor() const;
    const QStringList &faults() const { return m_faults; }

private:
    struct Step {
        QString what;
        std::function<bool()> done;
    };

    QQmlEngine &m_engine;
    QSize m_size;
    QTemporaryDir m_home; ///< where the running program keeps things
    GalleryService m_service;
    std::vector<std::shared_ptr<void>> m_kept;
    std::deque<Step> m_steps;
    QStringList m_faults;
    std::unique_ptr<QQuickWindow> m_window; ///< of an item; before everything it draws
    std::unique_ptr<WindowApplication> m_program;
};

} // namespace lmp
