// Listing, loading and saving conversations, another answer to a message, and feedback on one.
#include "CrisisDetector.h"
#include "SandboxCrypto.h"
#include "SandboxFailure.h"
#include "SandboxRouter.h"
#include "SandboxServices.h"

namespace lmp::sandbox {

namespace {

std::string textOf(const boost::json::object &object, const char *key) {
    const auto *value = object.if_contains(key);
    return value && value->is_string() ? std::string(value->as_string()) : std::string();
}

/// The delivered turns up to and including the user message `id`, whose text may have been corrected.
std::vector<ChatTurn> turnsUpTo(const boost::json::object &conversation, const std::string &id,
                                const std::optional<std::string> &edited) {
    std::vector<ChatTurn> turns;
    for (const auto &item : conversation.at("messages").as_array()) {
        const auto &message = item.as_object();
        const bool isUser = textOf(message, "role") == "user";
        if (isUser && textOf(message, "id") == id) {
            turns.push_back({"user", edited.value_or(textOf(message, "text"))});
            return turns;
        }
        const auto state = textOf(message, "deliveryState");
        if (state.empty() || state == "submitted")
            turns.push_back({isUser ? "user" : "assistant", textOf(message, "text")});
    }
    throw SandboxFailure::notFound("没有找到要重新回答的那条消息。");
}

std::string wholeReply(ReplySource &source, const StopSignal &stop) {
    std::string text;
    for (;;) {
        auto piece = source.next(std::chrono::seconds(1));
        if (piece.kind == ReplySource::Piece::Kind::failed || stop.stopped())
            throw SandboxFailure(502, "upstream_failed", "模型服务中断了，这一轮没有计费。");
        if (piece.kind == ReplySource::Piece::Kind::finished)
            return text;
        text += piece.text;
    }
}

SandboxAnswer retry(SandboxServices &services, const SandboxRequest &request) {
    const auto user = services.tokens.userOf(request);
    const auto body = request.json();
    const JsonFields fields(body);
    const auto id = fields.text("userMessageId");
    const auto edited = fields.optionalText("editedInput", JsonFields::anyLength);
    const auto conversation = services.conversations.load(user, fields.text("conversationId"));
    TwinContext context;
    context.messages = turnsUpTo(conversation, id, edited);
    context.memories = services.memories.of(user);
    context.crisisLayer = CrisisDetector::layerOf(context.userText());
    context.mode = textOf(conversation, "mode");
    // Asking again should not bring back the same sentence.
    context.variation = 1 + std::stoul(randomHex(1), nullptr, 16) % 7;
    const auto speech = services.voice.speak(context, 800, false);
    boost::json::array used;
    for (const auto &memory : speech.used)
        used.push_back({{"content", memory.content}, {"truth", memory.truth}});
    return SandboxAnswer::json({{"messageId", "m_" + randomHex(12)},
                                {"text", wholeReply(*speech.source, services.stop)},
                                {"usedMemories", std::move(used)},
                                {"requestId", "req_" + randomHex(10)},
                                {"free", true}});
}

SandboxAnswer feedback(SandboxServices &services, const SandboxRequest &request) {
    const auto user = services.tokens.userOf(request);
    const auto body = request.json();
    const JsonFields fields(body);
    const auto polarity = fields.text("polarity");
    if (polarity != "positive" && polarity != "negative")
        throw SandboxFailure::badField("polarity", "positive 或 negative");
    fields.text("conversationId");
    fields.text("messageId");
    fields.optionalText("reason");
    fields.optionalText("requestId");
    services.database.write([&](SQLite::Database &database) {
        SQLite::Statement insert(database, "INSERT INTO feedback(user_id, body, created_at) VALUES(?, ?, ?)");
        insert.bind(1, user);
        insert.bind(2, boost::json::serialize(body));
        insert.bind(3, services.options.now());
        insert.exec();
    });
    return SandboxAnswer::json({{"ok", true}});
}

} // namespace

void addConversationRoutes(SandboxRouter &router, SandboxServices &services) {
    router.get("/api/app/conversations", [&services](const SandboxRequest &request) {
        return SandboxAnswer::json({{"conversations", services.conversations.list(services.tokens.userOf(request))}});
    });
    router.get("/api/app/conversation", [&services](const SandboxRequest &request) {
        const auto user = services.tokens.userOf(request);
        return SandboxAnswer::json({{"conversation", services.conversations.load(user, request.param("id"))}});
    });
    router.post("/api/app/conversation/sync", [&services](const SandboxRequest &request) {
        const auto user = services.tokens.userOf(request);
        const auto body = request.json();
        const auto revision = services.conversations.save(user, JsonFields(body).child("conversation"));
        return SandboxAnswer::json({{"ok", true}, {"revision", revision}});
    });
    router.post("/api/app/conversation/retry",
                [&services](const SandboxRequest &request) { return retry(services, request); });
    router.post("/api/app/feedback",
                [&services](const SandboxRequest &request) { return feedback(services, request); });
}

} // namespace lmp::sandbox
