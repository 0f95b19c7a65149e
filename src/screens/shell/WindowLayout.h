#pragma once

#include "platform/Settings.h"

#include <QObject>
#include <QSize>
#include <QtQml/qqmlregistration.h>

class QWindow;

namespace lmp {

/// How the person has laid the window out: its size and the sidebar's, kept for the next start.
///
/// One for each window, owned by its scene, UI thread. Lengths of the sidebar are of the design, before the scale.
class WindowLayout : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")
    Q_PROPERTY(int windowWidth READ windowWidth CONSTANT)
    Q_PROPERTY(int windowHeight READ windowHeight CONSTANT)
    Q_PROPERTY(int sidebarWidth READ sidebarWidth WRITE setSidebarWidth NOTIFY changed)
    Q_PROPERTY(int narrowestSidebar READ narrowest CONSTANT)
    Q_PROPERTY(int widestSidebar READ widest CONSTANT)
    Q_PROPERTY(bool sidebarCollapsed READ sidebarCollapsed WRITE setSidebarCollapsed NOTIFY changed)
public:
    static constexpr int narrowestSidebar = 208;
    static constexpr int widestSidebar = 340;

    /// @param settings outlives this
    explicit WindowLayout(Settings &settings, QObject *parent = nullptr);

    /// What the window opens with.
    int windowWidth() const { return m_window.width(); }
    int windowHeight() const { return m_window.height(); }
    int sidebarWidth() const { return m_sidebar; }
    void setSidebarWidth(int width);
    int narrowest() const { return narrowestSidebar; }
    int widest() const { return widestSidebar; }
    bool sidebarCollapsed() const { return m_collapsed; }
    void setSidebarCollapsed(bool collapsed);
    /// It fills the screen. Its size is the one it has otherwise.
    bool maximized() const { return m_maximized; }
    /// Remembers how large the window is; when it closes.
    void keep(const QWindow &window);

Q_SIGNALS:
    void changed();

private:
    void store();

    Settings &m_settings;
    QSize m_window{1120, 760};
    int m_sidebar = 248;
    bool m_collapsed = false;
    bool m_maximized = false;
};

} // namespace lmp
