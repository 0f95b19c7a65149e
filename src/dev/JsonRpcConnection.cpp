#include "dev/JsonRpcConnection.h"

namespace lmp {

using namespace Qt::StringLiterals;

QCoro::Task<JsonRpcConnection::Reply> JsonRpcConnection::send(qint64 id, QByteArray line,
                                                              std::chrono::milliseconds timeout, Heard heard) {
    if (m_closed)
        co_return Reply{.error = *m_closed};
    const Later<Reply> reply;
    auto limit = std::make_unique<QTimer>();
    limit->setSingleShot(true);
    QObject::connect(limit.get(), &QTimer::timeout, limit.get(), [this, id, timeout] {
        finish(id, {.error = u"等了 %1 秒没有回应"_s.arg(std::chrono::ceil<std::chrono::seconds>(timeout).count())});
    });
    limit->start(timeout);
    m_pendingResponses.emplace(id, Waiting{reply, std::move(limit), std::move(heard)});
    if (!write(line))
        finish(id, {.error = u"对方不再读了，没有发出"_s});
    co_return co_await reply;
}

void JsonRpcConnection::settle(const JsonRpcId &id, Reply reply) {
    if (const auto number = id.number())
        finish(*number, std::move(reply));
}

void JsonRpcConnection::finish(qint64 id, Reply reply) {
    auto waiting = m_pendingResponses.extract(id);
    if (waiting.empty())
        return;
    // It may be the timer that calls.
    waiting.mapped().limit.release()->deleteLater();
    if (waiting.mapped().heard)
        waiting.mapped().heard(reply);
    waiting.mapped().reply.resolve(std::move(reply));
}

void JsonRpcConnection::close(const QString &reason) {
    m_closed = reason;
    while (!m_pendingResponses.empty())
        finish(m_pendingResponses.begin()->first, {.error = reason});
}

bool JsonRpcConnection::write(const QByteArray &line) {
    return m_closed || m_write(line);
}

} // namespace lmp
