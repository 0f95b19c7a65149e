#include "dev/codex/CodexLogin.h"

#include "dev/DevProcess.h"
#include "dev/codex/CodexCalls.h"

#include <QCoreApplication>
#include <QDir>
#include <QTimer>

#include <stop_token>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace codex_call;

QCoro::Task<std::optional<bool>> CodexLogin::ask(QString path, std::chrono::milliseconds limit) {
    // Starting blocks for a moment.
    const auto launched =
        (co_await DevProcess::start({.program = path, .arguments = {u"app-server"_s}, .directory = QDir::homePath()}))
            .process;
    if (!launched)
        co_return std::nullopt;
    const auto &process = *launched;
    std::stop_source late;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&late] { late.request_stop(); });
    timer.start(limit);

    // The server answers one after the other, so there is nothing to wait for in between.
    constexpr qint64 greeting = 1, account = 2;
    const Initialize client{.clientInfo = {.version = QCoreApplication::applicationVersion()}};
    process->writeLine(json_rpc::request(greeting, u"initialize"_s, client));
    process->writeLine(json_rpc::notification(u"initialized"_s, json_rpc::Nothing()));
    process->writeLine(json_rpc::request(account, u"account/read"_s, json_rpc::Nothing()));

    std::optional<bool> usable;
    auto lines = process->lines();
    while (const auto line = co_await lines.next(late.get_token())) {
        const auto message = Json::decode<CodexMessage>(*line);
        const auto *response = message ? std::get_if<codex_message::Response>(&message->what) : nullptr;
        if (!response || response->id.number() != account)
            continue;
        if (const auto answer =
                response->result ? Json::fromValue<AccountAnswer>(*response->result) : std::unexpected(JsonFailure()))
            usable = answer->isUsable();
        break;
    }
    process->terminate(std::chrono::seconds(1));
    co_return usable;
}

} // namespace lmp
