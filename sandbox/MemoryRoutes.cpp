// What the twin remembers: the ledger, its history, candidates and chapters, and the scan that finds candidates.
#include "MemoryExtractor.h"
#include "SandboxCrypto.h"
#include "SandboxFailure.h"
#include "SandboxRouter.h"
#include "SandboxServices.h"

namespace lmp::sandbox {

namespace {

constexpr std::int64_t scanCost = 1; ///< Pip
constexpr std::size_t mostMessages = 200;

SandboxAnswer extract(SandboxServices &services, const SandboxRequest &request) {
    const auto user = services.tokens.userOf(request);
    const auto body = request.json();
    const auto &messages = JsonFields(body).list("messages");
    if (messages.empty() || messages.size() > mostMessages)
        throw SandboxFailure::badField("messages", "1 到 200 条");
    services.ledger.requireFunds(user, scanCost);
    std::vector<TwinMemory> found;
    std::size_t index = 0;
    for (const auto &message : messages) {
        const auto where = "messages[" + std::to_string(index++) + "]";
        if (!message.is_object())
            throw SandboxFailure::badField(where, "对象");
        const JsonFields fields(message.as_object(), where + ".");
        const auto role = fields.text("role");
        const auto content = fields.text("content", JsonFields::anyLength);
        if (role != "user" && role != "assistant")
            throw SandboxFailure::badField(where + ".role", "user 或 assistant");
        // Only what somebody says of themselves is theirs.
        if (role == "user")
            std::ranges::move(MemoryExtractor::fromText(content), std::back_inserter(found));
    }
    auto candidates = services.memoryLedger.propose(user, found, "你在对话里这样说过");
    const auto receipt = services.ledger.charge(user, "scan_" + randomHex(10), scanCost);
    boost::json::object answer{{"pipCharged", receipt.charged}, {"balance", receipt.balance}};
    if (candidates.empty())
        answer["skipped"] = found.empty() ? "这些内容里没有值得长期记住的。" : "都与已有记忆重复。";
    answer["candidates"] = std::move(candidates);
    return SandboxAnswer::json(answer);
}

} // namespace

void addMemoryRoutes(SandboxRouter &router, SandboxServices &services) {
    /// A route of one user's ledger that answers `work(user, fields)`, or {} when that answers nothing.
    const auto post = [&router, &services](const std::string &path, auto work) {
        router.post("/api/app" + path, [&services, work](const SandboxRequest &request) {
            const auto user = services.tokens.userOf(request);
            const auto body = request.json();
            const JsonFields fields(body);
            if constexpr (std::is_void_v<decltype(work(services.memoryLedger, user, fields))>) {
                work(services.memoryLedger, user, fields);
                return SandboxAnswer::json({});
            } else
                return SandboxAnswer::json(work(services.memoryLedger, user, fields));
        });
    };
    using Ledger = MemoryLedger;
    using User = std::string;
    using Fields = JsonFields;
    router.get("/api/app/memory", [&services](const SandboxRequest &request) {
        return SandboxAnswer::json(services.memoryLedger.bundle(services.tokens.userOf(request)));
    });
    router.get("/api/app/memory/history", [&services](const SandboxRequest &request) {
        const auto user = services.tokens.userOf(request);
        return SandboxAnswer::json(services.memoryLedger.history(user, request.param("memoryId")));
    });
    router.post("/api/app/memory/extract",
                [&services](const SandboxRequest &request) { return extract(services, request); });
    post("/memory/candidate/confirm", [](Ledger &ledger, const User &user, const Fields &fields) {
        return ledger.confirm(user, fields.text("candidateId"));
    });
    post("/memory/candidate/dismiss", [](Ledger &ledger, const User &user, const Fields &fields) {
        ledger.dismiss(user, fields.text("candidateId"));
    });
    post("/memory/correct", [](Ledger &ledger, const User &user, const Fields &fields) {
        return ledger.correct(user, fields.text("memoryId"), fields.text("content", JsonFields::anyLength),
                              fields.text("expectedRevision"));
    });
    post("/memory/revert", [](Ledger &ledger, const User &user, const Fields &fields) {
        return ledger.revert(user, fields.text("memoryId"), fields.text("expectedRevision"));
    });
    post("/memory/freeze", [](Ledger &ledger, const User &user, const Fields &fields) {
        const auto frozen = fields.optionalBool("frozen");
        if (!frozen)
            throw SandboxFailure::badField("frozen", "true 或 false");
        ledger.freeze(user, fields.text("memoryId"), *frozen);
    });
    post("/memory/forget", [](Ledger &ledger, const User &user, const Fields &fields) {
        return ledger.forget(user, fields.text("memoryId"));
    });
    post("/memory/restore",
         [](Ledger &ledger, const User &user, const Fields &fields) { ledger.restore(user, fields.child("item")); });
    post("/chapter/resolve", [](Ledger &ledger, const User &user, const Fields &fields) {
        ledger.resolveChapter(user, fields.text("chapterId"), fields.text("decision"));
    });
}

} // namespace lmp::sandbox
