#include "screens/shell/WindowLayout.h"

#include <QWindow>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// Width and height of the window, width of the sidebar, whether that is collapsed, and whether the window fills the
/// screen: "1120 760 248 0 0". The last was not always there.
const QString layoutKey = u"lmp.window.layout.v1"_s;

} // namespace

WindowLayout::WindowLayout(Settings &settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings) {
    const QList<QByteArray> kept = settings.value(layoutKey).value_or(QByteArray()).split(' ');
    if (kept.size() != 4 && kept.size() != 5)
        return;
    m_window = QSize(kept[0].toInt(), kept[1].toInt()).boundedTo({16000, 16000}).expandedTo({480, 360});
    m_sidebar = std::clamp(kept[2].toInt(), narrowestSidebar, widestSidebar);
    m_collapsed = kept[3] == "1";
    m_maximized = kept.value(4) == "1";
}

void WindowLayout::setSidebarWidth(int width) {
    const int bounded = std::clamp(width, narrowestSidebar, widestSidebar);
    if (bounded == m_sidebar)
        return;
    m_sidebar = bounded;
    Q_EMIT changed();
}

void WindowLayout::setSidebarCollapsed(bool collapsed) {
    if (collapsed == m_collapsed)
        return;
    m_collapsed = collapsed;
    store();
    Q_EMIT changed();
}

void WindowLayout::keep(const QWindow &window) {
    const auto states = window.windowStates();
    m_maximized = states.testFlag(Qt::WindowMaximized);
    if (!states.testAnyFlags(Qt::WindowMaximized | Qt::WindowFullScreen))
        m_window = window.size();
    store();
}

void WindowLayout::store() {
    m_settings.setValue(layoutKey, QByteArray::number(m_window.width()) + ' ' + QByteArray::number(m_window.height()) +
                                       ' ' + QByteArray::number(m_sidebar) + ' ' + (m_collapsed ? '1' : '0') + ' ' +
                                       (m_maximized ? '1' : '0'));
}

} // namespace lmp
