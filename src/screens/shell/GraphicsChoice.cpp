#include "screens/shell/GraphicsChoice.h"

#include <QDir>
#include <QQuickWindow>

namespace lmp {

using namespace Qt::StringLiterals;

bool GraphicsChoice::onlySoftware() {
#ifdef Q_OS_LINUX
    if (qEnvironmentVariableIntValue("LIBGL_ALWAYS_SOFTWARE") != 0)
        return true;
    // A display with a host's name is another machine's: its card cannot be reached from here.
    const QString display = qEnvironmentVariable("DISPLAY");
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") && display.contains(u':') && !display.startsWith(u':') &&
        !display.startsWith(u"unix:"_s) && !display.startsWith(u'/'))
        return true;
    return QDir(u"/dev/dri"_s).entryList({u"renderD*"_s}, QDir::System).isEmpty() &&
           QDir(u"/dev"_s).entryList({u"nvidia[0-9]*"_s}, QDir::System).isEmpty();
#else
    return false;
#endif
}

void GraphicsChoice::make() {
    if (!qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND") || !qEnvironmentVariableIsEmpty("QSG_RHI_BACKEND"))
        return;
    if (onlySoftware())
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

} // namespace lmp
