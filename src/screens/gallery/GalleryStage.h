#pragma once

#include "screens/gallery/GalleryService.h"

#include <QQmlEngine>
#include <QQuickWindow>
#include <QVariantMap>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace lmp {

class Application;

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

    /// The program as it runs, over `service`. @param token of the session; signed out without one
    Application &open(const std::optional<QString> &token = {});

    /// Shows an item of a built-in module, "Account/LaunchView", over the whole window.
    void show(const QString &type, const QVariantMap &properties);
    /// Shows a module's own window, "Shell/Main".
    void showWindow(const QString &type, const QVariantMap &properties);

    /// Keeps `object` until the window is gone.
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

    /// The window; null before one is shown.
    QQuickWindow *window() { return m_window.get(); }
    /// What has been shown: an item or a window.
    QObject *root() const { return m_root; }
    /// The first item with this object name in what is shown; null without one.
    QQuickItem *item(const QString &objectName) const;

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

    QObject *create(const QString &type, const QVariantMap &properties);

    QQmlEngine &m_engine;
    QSize m_size;
    GalleryService m_service;
    std::vector<std::shared_ptr<void>> m_kept;
    std::deque<Step> m_steps;
    QStringList m_faults;
    QPointer<QObject> m_root;
    std::unique_ptr<QQuickWindow> m_window; ///< before everything it draws
};

} // namespace lmp
