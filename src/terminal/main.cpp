#include "terminal/TerminalApplication.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <clocale>
#include <cstdio>

int main(int argc, char **argv) {
    const auto start = lmp::SystemClock().monotonic();
    std::setlocale(LC_ALL, "");
    auto line = lmp::CommandLine::parse(argc, argv);
    if (!line) {
        std::fputs(line.error().text.toUtf8().constData(), line.error().usageError ? stderr : stdout);
        return line.error().usageError ? 2 : 0;
    }
    // What a person can act on is said in sentences; the log is for whoever asks for it.
    if (qEnvironmentVariableIsEmpty("QT_LOGGING_RULES"))
        QLoggingCategory::setFilterRules(QStringLiteral("com.tolvey.quillet.*=false\ndefault.warning=false"));
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("lumenpair"));
    QCoreApplication::setApplicationVersion(QStringLiteral(LMP_VERSION));
    lmp::TerminalApplication terminal(*std::move(line), start);
    return terminal.run();
}
