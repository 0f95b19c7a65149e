#pragma once

#include "core/JsonEncodingError.h"
#include "core/Later.h"
#include "dev/JsonRpc.h"

#include <QCoroTask>
#include <QTimer>

#include <chrono>
#include <functional>
#include <map>

namespace lmp {

/// Our end of a JSON-RPC conversation: numbers requests, waits for their responses, writes answers.
///
/// Owned by an engine, on its executor, whose event loop the waiting callers resume through. It does not read: whoever
/// reads hands it the responses. Every request ends, at the latest after its time-out or with `close`. Tasks must end
/// before the connection goes.
class JsonRpcConnection {
public:
    /// What became of a request.
    struct Reply {
        std::optional<boost::json::value> result = {}; ///< none when it failed
        QString error = {};                            ///< why
    };
    /// @return false when the line could not be taken
    using Write = std::function<bool(QByteArrayView line)>;
    /// Called as a reply comes, before whatever comes after it; the waiting caller resumes later.
    using Heard = std::function<void(const Reply &reply)>;

    explicit JsonRpcConnection(Write write)
        : m_write(std::move(write)) {}

    template <class Params>
    QCoro::Task<Reply> request(QString method, Params params, std::chrono::milliseconds timeout, Heard heard = {}) {
        const qint64 id = m_nextId++;
        QByteArray line;
        try {
            line = json_rpc::request(id, method, params);
        } catch (const JsonEncodingError &) {
            return failed(QStringLiteral("请求组装失败"));
        }
        return send(id, std::move(line), timeout, std::move(heard));
    }

    template <class Params>
    void notify(const QString &method, const Params &params) {
        write(json_rpc::notification(method, params));
    }
    template <class Result>
    void answer(const JsonRpcId &id, const Result &result) {
        write(json_rpc::answer(id, result));
    }
    void refuse(const JsonRpcId &id, json_rpc::Error error) { write(json_rpc::refusal(id, std::move(error))); }

    /// A response has come; one that nobody waits for, or waits for no longer, is left alone.
    void settle(const JsonRpcId &id, Reply reply);
    /// Fails whoever waits and every request from now on.
    void close(const QString &reason);

private:
    struct Waiting {
        Later<Reply> reply;
        std::unique_ptr<QTimer> limit;
        Heard heard;
    };

    static QCoro::Task<Reply> failed(QString reason) { co_return Reply{.error = reason}; }
    QCoro::Task<Reply> send(qint64 id, QByteArray line, std::chrono::milliseconds timeout, Heard heard);
    void finish(qint64 id, Reply reply);
    bool write(const QByteArray &line);

    Write m_write;
    qint64 m_nextId = 1;
    std::map<qint64, Waiting> m_pendingResponses;
    std::optional<QString> m_closed; ///< why nothing is sent any more
};

} // namespace lmp
