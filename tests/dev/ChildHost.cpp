// A program that has children, to be killed or to quit: child_host COUNT PROGRAM [ARGUMENT...]
//
// Prints the first line of each child as it comes. A line of input goes to every child and one line of each comes back;
// "quit" quits as the application does and prints how long that took. At the end of its input it waits to be killed.

#include "core/Detach.h"
#include "dev/DevProcessRegistry.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <iostream>
#include <thread>

namespace {

QCoro::Task<> printLines(std::shared_ptr<lmp::DevProcess> child) {
    auto lines = child->lines();
    while (const auto line = co_await lines.next()) {
        std::printf("%.*s\n", static_cast<int>(line->size()), line->data());
        std::fflush(stdout);
    }
}

void quit() {
    QElapsedTimer timer;
    timer.start();
    lmp::DevProcessRegistry::shared().quitAndWait();
    std::printf("quit_ms=%lld left=%lld\n", timer.elapsed(),
                static_cast<long long>(lmp::DevProcessRegistry::shared().liveCount()));
    std::fflush(stdout);
    QCoreApplication::quit();
}

} // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3)
        return 2;
    std::vector<std::shared_ptr<lmp::DevProcess>> children;
    for (int count = arguments[1].toInt(); count > 0; --count) {
        auto child = lmp::DevProcess::launch({.program = arguments[2], .arguments = arguments.mid(3)});
        if (!child) {
            std::fprintf(stderr, "%s\n", qUtf8Printable(child.error().description()));
            return 1;
        }
        lmp::detach(printLines(*child), "the lines of a child");
        children.push_back(*child);
    }
    std::thread([&children] {
        for (std::string line; std::getline(std::cin, line);) {
            if (line == "quit")
                QMetaObject::invokeMethod(qApp, &quit, Qt::QueuedConnection);
            else
                for (const auto &child : children)
                    child->writeLine(QByteArray::fromStdString(line));
        }
    }).detach();
    return QCoreApplication::exec();
}
