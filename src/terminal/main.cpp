#include "platform/ProcessPrivacy.h"
#include "terminal/TerminalApplication.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// A standard stream that we were started without would be the next file or socket that anything opens: what is said
/// would be written into it, and what it holds read as typed.
void openMissingStreams() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(fd, F_GETFD) == -1 && errno == EBADF)
            ::open("/dev/null", O_RDWR);
    }
}

} // namespace

int main(int argc, char **argv) {
    const auto start = lmp::SystemClock().monotonic();
    lmp::ProcessPrivacy::begin();
    openMissingStreams();
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
