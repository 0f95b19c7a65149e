#include "app/SingleInstance.h"
#include "platform/ProcessPrivacy.h"
#include "platform/SystemClock.h"
#include "screens/shell/GraphicsChoice.h"
#include "screens/shell/WindowApplication.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>

namespace {

int complain(const QString &text, int status) {
    std::fputs((text + u'\n').toUtf8().constData(), stderr);
    return status;
}

} // namespace

int main(int argc, char **argv) {
    const auto start = lmp::SystemClock().monotonic();
    lmp::ProcessPrivacy::begin();
    QStringList arguments;
    for (int at = 1; at < argc; ++at)
        arguments << QString::fromLocal8Bit(argv[at]);
    auto options = lmp::WindowOptions::parse(arguments);
    if (!options)
        return complain(options.error(), 2);
    QGuiApplication::setApplicationName(QStringLiteral("lumenpair"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Lumenpair"));
    QGuiApplication::setApplicationVersion(QStringLiteral(LMP_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.tolvey.lumenpair"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    lmp::GraphicsChoice::make();
    // The program's own arguments are not the toolkit's to read.
    int toolkitArguments = 1;
    QGuiApplication app(toolkitArguments, argv);

    lmp::SingleInstance instance(options->profile);
    auto handover = lmp::SingleInstance::ofThisProcess();
    handover.arguments = arguments;
    if (options->named)
        handover.site = options->site;
    switch (instance.claim(handover)) {
    case lmp::SingleInstance::Role::First:
        break;
    case lmp::SingleInstance::Role::HandedOver:
        return 0;
    case lmp::SingleInstance::Role::OtherSite:
        return complain(lmp::SingleInstance::otherSiteText(), 1);
    case lmp::SingleInstance::Role::Unresponsive:
        return complain(lmp::SingleInstance::unresponsiveText(), 1);
    }
    lmp::WindowApplication window(*std::move(options), start);
    QObject::connect(&instance, &lmp::SingleInstance::handedOver, &window, &lmp::WindowApplication::takeOver);
    QObject::connect(&window, &lmp::WindowApplication::leaving, &instance, &lmp::SingleInstance::release);
    window.start();
    const int status = QGuiApplication::exec();
    lmp::Application::endChildren();
    if (window.gaveUp())
        std::_Exit(status);
    return status;
}
