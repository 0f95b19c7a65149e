#include "platform/SystemClock.h"
#include "screens/shell/GraphicsChoice.h"
#include "screens/shell/WindowApplication.h"

#include <QGuiApplication>

#include <cstdio>

namespace {

int complain(const QString &text) {
    std::fputs((text + u'\n').toUtf8().constData(), stderr);
    return 2;
}

} // namespace

int main(int argc, char **argv) {
    const auto start = lmp::SystemClock().monotonic();
    QStringList arguments;
    for (int at = 1; at < argc; ++at)
        arguments << QString::fromLocal8Bit(argv[at]);
    auto options = lmp::WindowOptions::parse(arguments);
    if (!options)
        return complain(options.error());
    QGuiApplication::setApplicationName(QStringLiteral("lumenpair"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Lumenpair"));
    QGuiApplication::setApplicationVersion(QStringLiteral(LMP_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tolvey.lumenpair"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    lmp::GraphicsChoice::make();
    // The program's own arguments are not the toolkit's to read.
    int toolkitArguments = 1;
    QGuiApplication app(toolkitArguments, argv);
    lmp::WindowApplication window(*std::move(options), start);
    return window.run();
}
