#pragma once

#include "dev/DevMode.h"
#include "dev/codex/CodexMessage.h"

/// What we ask of Codex, and what we read of its answers.
namespace lmp::codex_call {

struct ClientInfo {
    QString name = QStringLiteral("lumenpair");
    QString title = QStringLiteral("Lumenpair");
    QString version = {};
};
BOOST_DESCRIBE_STRUCT(ClientInfo, (), (name, title, version))

struct Capabilities {
    bool experimentalApi = true;
    QList<QString> optOutNotificationMethods = {};
};
BOOST_DESCRIBE_STRUCT(Capabilities, (), (experimentalApi, optOutNotificationMethods))

struct Initialize {
    ClientInfo clientInfo = {};
    Capabilities capabilities = {};
};
BOOST_DESCRIBE_STRUCT(Initialize, (), (clientInfo, capabilities))

struct AccountAnswer {
    std::optional<boost::json::value> account = {};
    std::optional<bool> requiresOpenaiAuth = {};

    /// Signed in, or nothing that one would have to sign in to.
    bool isUsable() const { return account || requiresOpenaiAuth == false; }
};
BOOST_DESCRIBE_STRUCT(AccountAnswer, (), (account, requiresOpenaiAuth))

/// Begins a thread, or goes on with one. A thread does not keep what it was allowed, so both say it.
struct OpenThread {
    std::optional<QString> threadId = {};  ///< of the thread to go on with
    std::optional<bool> excludeTurns = {}; ///< what was said in it need not be told again
    QString cwd = {};
    QString approvalPolicy = {};
    QString sandbox = {};
    QString approvalsReviewer = QStringLiteral("user");
    std::optional<QString> model = {};

    void setMode(DevMode mode) {
        approvalPolicy = mode == DevMode::full ? QStringLiteral("never") : QStringLiteral("on-request");
        sandbox = mode == DevMode::readOnly ? QStringLiteral("read-only") : QStringLiteral("workspace-write");
    }
};
BOOST_DESCRIBE_STRUCT(OpenThread, (), (threadId, excludeTurns, cwd, approvalPolicy, sandbox, approvalsReviewer, model))

struct Thread {
    QString id = {};
    std::optional<QString> model = {};
};
BOOST_DESCRIBE_STRUCT(Thread, (), (id, model))

struct ThreadAnswer {
    Thread thread = {};
    std::optional<QString> model = {};
};
BOOST_DESCRIBE_STRUCT(ThreadAnswer, (), (thread, model))

struct TextInput {
    QString type = QStringLiteral("text");
    QString text = {};
};
BOOST_DESCRIBE_STRUCT(TextInput, (), (type, text))

struct StartTurn {
    QString threadId = {};
    QList<TextInput> input = {};
};
BOOST_DESCRIBE_STRUCT(StartTurn, (), (threadId, input))

struct TurnAnswer {
    codex_message::Turn turn = {};
};
BOOST_DESCRIBE_STRUCT(TurnAnswer, (), (turn))

struct InterruptTurn {
    QString threadId = {};
    QString turnId = {};
};
BOOST_DESCRIBE_STRUCT(InterruptTurn, (), (threadId, turnId))

} // namespace lmp::codex_call
