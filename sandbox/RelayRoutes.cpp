// The two routes of a chat turn: streamed, and in one piece.
#include "RelayStream.h"
#include "SandboxFailure.h"
#include "SandboxRouter.h"
#include "SandboxServices.h"

namespace lmp::sandbox {

namespace {

constexpr const char *plainPath = "/api/relay/chat";
constexpr const char *streamPath = "/api/relay/chat/stream";

std::unique_ptr<RelayTurn> turnOf(SandboxServices &services, const SandboxRequest &request) {
    auto user = services.tokens.userOf(request);
    return std::make_unique<RelayTurn>(services, std::move(user), TurnRequest::fromJson(request.json()));
}

SandboxAnswer stream(SandboxServices &services, const SandboxRequest &request) {
    // Who may not speak at all is told so before anybody is told to wait.
    auto turn = turnOf(services, request);
    auto slot = services.slots.take();
    if (!slot)
        throw SandboxFailure(503, "busy", "现在同时聊天的人太多了，请稍后再试。");
    auto source = turn->start(true);
    return SandboxAnswer::events(std::make_shared<RelayStream>(std::move(turn), std::move(source), std::move(slot),
                                                               request.fault, services.stop));
}

SandboxAnswer plain(SandboxServices &services, const SandboxRequest &request) {
    const auto turn = turnOf(services, request);
    const auto &fault = request.fault;
    const auto source = turn->start(false);
    std::string text;
    for (auto piece = source->next(std::chrono::seconds(1)); piece.kind != ReplySource::Piece::Kind::finished;
         piece = source->next(std::chrono::seconds(1))) {
        if (piece.kind == ReplySource::Piece::Kind::failed || services.stop.stopped())
            throw SandboxFailure(502, "upstream_failed", "模型服务中断了，这一轮没有计费。");
        text += piece.text;
    }
    if (fault && fault->empty)
        text.clear();
    const bool spoiled =
        fault && (fault->cutAfterEvents || fault->stallAfterEvents || fault->garbageAfterEvents) && !fault->charge;
    auto answer = spoiled ? turn->uncharged() : turn->complete();
    answer["text"] = text;
    answer["model"] = services.voice.modelName();
    if (!turn->usedMemories().empty())
        answer["usedMemories"] = turn->usedMemories();
    if (const auto &safety = turn->safety())
        answer["safety"] = *safety;
    return SandboxAnswer::json(answer);
}

} // namespace

void addRelayRoutes(SandboxRouter &router, SandboxServices &services) {
    router.post(streamPath, [&services](const SandboxRequest &request) { return stream(services, request); });
    router.post(plainPath, [&services](const SandboxRequest &request) { return plain(services, request); });
}

void chargeReplacedTurn(SandboxServices &services, const SandboxRequest &request) {
    if (request.path == plainPath || request.path == streamPath)
        turnOf(services, request)->complete();
}

} // namespace lmp::sandbox
