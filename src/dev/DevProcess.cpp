#include "dev/DevProcess.h"

#include "dev/ChildIO.h"
#include "dev/ChildLoop.h"
#include "dev/DevExecutable.h"
#include "dev/DevPool.h"
#include "dev/DevProcessRegistry.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QThreadPool>
#include <QTimer>

#include <cstring>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Also given when nobody holds the child any more: it may want to save what it has.
constexpr auto releaseGrace = 1s;

/// The guardian stands beside the program, wherever that is.
QByteArray guardianPath() {
    return QFile::encodeName(QCoreApplication::applicationDirPath() + u"/lumenpair-guardian"_s);
}

QList<QByteArray> encoded(const QStringList &texts) {
    QList<QByteArray> list;
    list.reserve(texts.size());
    for (const QString &text : texts)
        list.append(QFile::encodeName(text));
    return list;
}

void removeVariable(QList<QByteArray> &environment, const QString &name) {
    const QByteArray start = name.toUtf8() + '=';
    environment.removeIf([&start](const QByteArray &entry) { return entry.startsWith(start); });
}

QList<QByteArray> environmentFor(const DevProcess::Command &command, QList<QByteArray> environment) {
    for (const QString &name : command.without)
        removeVariable(environment, name);
    for (const auto &[name, value] : command.extra) {
        removeVariable(environment, name);
        environment.append(name.toUtf8() + '=' + QFile::encodeName(value));
    }
    return environment;
}

std::expected<std::shared_ptr<ChildIO>, DevProcess::Failure> spawn(const ChildSpawn::Order &order,
                                                                   DevProcess::Output kind) {
    auto spawned = ChildSpawn::start(order);
    if (!spawned)
        return std::unexpected(DevProcess::Failure::launch(QString::fromLocal8Bit(std::strerror(spawned.error())) +
                                                           u"：lumenpair-guardian"_s));
    return std::make_shared<ChildIO>(*spawned, kind);
}

QCoro::Task<DevProcess::Exit> exitOf(std::shared_ptr<ChildIO> io, std::stop_token stop) {
    const auto coming = io->nextExit();
    const auto exit = co_await coming.next(stop);
    coming.cancel();
    co_return exit.value_or(DevProcess::Exit{});
}

QCoro::Task<bool> endWithin(std::shared_ptr<ChildIO> io, std::chrono::milliseconds timeout) {
    std::stop_source passed;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [passed]() mutable { passed.request_stop(); });
    timer.start(timeout);
    const auto exit = io->nextExit();
    const bool ended = (co_await exit.next(passed.get_token())).has_value();
    exit.cancel();
    co_return ended;
}

} // namespace

QString DevProcess::Failure::description() const {
    return kind == Kind::NotFound ? u"这台 Mac 上没找到 "_s + detail : u"起不来："_s + detail;
}

std::expected<std::shared_ptr<DevProcess>, DevProcess::Failure> DevProcess::launch(Command command) {
    return launch(std::move(command), DevProcessRegistry::shared());
}

std::expected<std::shared_ptr<DevProcess>, DevProcess::Failure> DevProcess::launch(Command command,
                                                                                   DevProcessRegistry &registry) {
    const auto program = DevExecutable::find(command.program);
    if (!program)
        return std::unexpected(Failure::notFound(command.program));
    command.program = *program;
    return launch(std::move(command), DevExecutable::childEnvironment(), registry);
}

std::expected<std::shared_ptr<DevProcess>, DevProcess::Failure>
DevProcess::launch(Command command, QList<QByteArray> environment, DevProcessRegistry &registry) {
    const ChildSpawn::Order order{
        .guardian = guardianPath(),
        .directory = QFile::encodeName(command.directory),
        .arguments = encoded(QStringList(command.program) + command.arguments),
        .environment = environmentFor(command, std::move(environment)),
    };
    auto io = registry.enter([&order, kind = command.output] { return spawn(order, kind); });
    if (!io)
        return std::unexpected(io.error());
    if (const auto started = (*io)->awaitStart(command.program, command.directory); !started)
        return std::unexpected(started.error());
    ChildLoop::shared().add(*io);
    return std::make_shared<DevProcess>(Key(), *std::move(io));
}

QCoro::Task<DevProcess::Started> DevProcess::start(Command command, std::stop_token stop) {
    using Launched = std::expected<std::shared_ptr<DevProcess>, Failure>;
    const Channel<Launched> arriving(1);
    DevPool::waiting().start([arriving, command = std::move(command), stop] {
        if (!stop.stop_requested()) {
            auto launched = launch(command);
            // What nobody waits for any more is let go of here, and so ends.
            arriving.tryPush(launched);
        }
        arriving.close();
    });
    auto launched = co_await arriving.next(stop);
    arriving.cancel();
    if (!launched)
        launched = std::unexpected(Failure::launch(u"已经不用了"_s));
    co_return Started{*std::move(launched)};
}

DevProcess::DevProcess(Key, std::shared_ptr<ChildIO> io)
    : m_io(std::move(io)) {}

DevProcess::~DevProcess() {
    if (!m_asked)
        m_io->terminate(releaseGrace);
    // Nobody will, and the child would be held back, or its pipe kept, for ever.
    if (!m_outputTaken)
        m_io->output().cancel();
}

QUuid DevProcess::ownershipID() const {
    return m_io->ownershipID();
}

qint64 DevProcess::pid() const {
    return m_io->pid();
}

DevLines DevProcess::lines() {
    m_outputTaken = true;
    return DevLines(m_io->output());
}

Channel<DevLines::Batch> DevProcess::output() {
    m_outputTaken = true;
    return m_io->output();
}

bool DevProcess::writeLine(QByteArrayView line) {
    QByteArray bytes;
    bytes.reserve(line.size() + 1);
    bytes += line;
    bytes += '\n';
    return m_io->write(std::move(bytes));
}

void DevProcess::closeStdin() {
    m_io->closeInput();
}

void DevProcess::terminate(std::chrono::milliseconds grace) {
    m_asked = true;
    m_io->terminate(grace);
}

QCoro::Task<bool> DevProcess::terminateAndWait(std::chrono::milliseconds timeout) {
    terminate(1s);
    return endWithin(m_io, timeout);
}

bool DevProcess::isRunning() const {
    return !m_io->exit();
}

QCoro::Task<DevProcess::Exit> DevProcess::exited(std::stop_token stop) {
    return exitOf(m_io, std::move(stop));
}

std::optional<DevProcess::Exit> DevProcess::exit() const {
    return m_io->exit();
}

bool DevProcess::waitForEnd(std::chrono::milliseconds timeout) const {
    return m_io->waitForEnd(std::chrono::steady_clock::now() + timeout);
}

QString DevProcess::stderrTail() const {
    return m_io->stderrTail();
}

} // namespace lmp
