// What only the sandbox has: faults, the view behind the scenes, and the identity providers it plays.
#include "SandboxFailure.h"
#include "SandboxRouter.h"
#include "SandboxServices.h"

namespace lmp::sandbox {

void addControlRoutes(SandboxRouter &router, SandboxServices &services) {
    router.post("/sandbox/faults", [&services](const SandboxRequest &request) {
        services.faults.add(FaultRule::fromJson(request.json()));
        return SandboxAnswer::json(services.faults.toJson());
    });
    router.get("/sandbox/faults",
               [&services](const SandboxRequest &) { return SandboxAnswer::json(services.faults.toJson()); });
    router.remove("/sandbox/faults", [&services](const SandboxRequest &) {
        services.faults.clear();
        return SandboxAnswer::json(services.faults.toJson());
    });
    router.get("/sandbox/status", [&services](const SandboxRequest &) {
        return SandboxAnswer::json({{"streams", services.slots.taken()}, {"model", services.voice.modelName()}});
    });
    router.get("/sandbox/charges", [&services](const SandboxRequest &request) {
        return SandboxAnswer::json(services.ledger.statement(services.tokens.userOf(request)));
    });
    router.post("/sandbox/balance", [&services](const SandboxRequest &request) {
        const auto user = services.tokens.userOf(request);
        const auto body = request.json();
        const auto balance = JsonFields(body).optionalInteger("balance");
        if (!balance || *balance < 0)
            throw SandboxFailure::badField("balance", "不小于 0 的整数");
        services.accounts.setBalance(user, *balance);
        return SandboxAnswer::json({{"balance", *balance}});
    });
    router.get("/sandbox/memories", [&services](const SandboxRequest &request) {
        boost::json::array memories;
        for (const auto &memory : services.memories.of(services.tokens.userOf(request)))
            memories.push_back({{"content", memory.content}, {"truth", memory.truth}});
        return SandboxAnswer::json({{"memories", std::move(memories)}});
    });
    router.get("/sandbox/telemetry",
               [&services](const SandboxRequest &) { return SandboxAnswer::json(services.telemetry.all()); });
    router.get("/sandbox/google/authorize",
               [&services](const SandboxRequest &request) { return services.google.authorize(request.query); });
    router.post("/sandbox/google/authorize",
                [&services](const SandboxRequest &request) { return services.google.decide(request.form()); });
    router.post("/sandbox/google/token",
                [&services](const SandboxRequest &request) { return services.google.token(request.form()); });
    router.get("/sandbox/apple/token", [&services](const SandboxRequest &request) {
        const auto subject = request.param("sub");
        if (subject.empty())
            throw SandboxFailure::badField("sub", "非空字符串");
        return SandboxAnswer::json({{"identityToken", services.apple.issue(subject, request.param("email"))}});
    });
}

} // namespace lmp::sandbox
