#include "dev/DevChildEngine.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// Lines that are read before their events are handed over: one waking of the consumer for many.
constexpr std::size_t burst = 256;

QString lastWords(const DevProcess &process, const DevProcess::Exit &exit) {
    QStringList said;
    if (const QString text = process.stderrTail().trimmed(); !text.isEmpty())
        said << text;
    if (exit.unwatched)
        said << u"看管它的进程被杀掉了，它启动的命令可能还在运行。"_s;
    return said.join(u'\n');
}

} // namespace

QCoro::Task<DevEngine::Outcome<DevEngine::Done>> DevChildEngine::launch(DevProcess::Command command) {
    const DevEngineFailure stopped = DevEngineError::server(u"会话已经结束"_s);
    if (m_stopped)
        co_return std::unexpected(stopped);
    const auto launched = (co_await DevProcess::start(std::move(command), m_reading.get_token())).process;
    if (m_stopped)
        co_return std::unexpected(stopped);
    if (!launched) {
        const auto &failure = launched.error();
        if (failure.kind == DevProcess::Failure::Kind::NotFound)
            co_return std::unexpected(DevEngineError::notInstalled(failure.detail));
        co_return std::unexpected(DevEngineFailure::process(failure.description()));
    }
    m_process = *launched;
    m_executor.spawn(read(m_process), "DevChildEngine::read");
    co_return Done();
}

bool DevChildEngine::writeLine(QByteArrayView line) {
    return !m_process || m_process->writeLine(line);
}

void DevChildEngine::onStop() {
    m_stopped = true;
    m_reading.request_stop();
    if (m_process)
        m_process->terminate(stopGrace);
    m_process.reset();
    m_events.close();
}

QCoro::Task<> DevChildEngine::read(std::shared_ptr<DevProcess> process) {
    auto lines = process->lines();
    const auto stop = m_reading.get_token();
    for (auto line = co_await lines.next(stop); line && !m_stopped; line = co_await lines.next(stop)) {
        m_events.hold();
        std::size_t taken = 0;
        do {
            m_events.weigh(std::size_t(line->size()));
            onLine(*line);
            m_events.weigh(0);
        } while (++taken < burst && m_events.held() < burst && (line = lines.tryNext()));
        co_await m_events.deliver();
    }
    if (m_stopped)
        co_return;
    m_events.hold();
    m_process.reset();
    // One that says nothing more is of no use any more, even if it lives.
    process->terminate(stopGrace);
    DevProcess::Exit exit;
    if (!lines.isTooLong())
        exit = co_await process->exited(stop);
    if (m_stopped)
        co_return;
    onEnd(lines.isTooLong() ? End::TooLong : End::Output, lastWords(*process, exit));
    co_await m_events.deliver();
    m_events.close();
}

} // namespace lmp
