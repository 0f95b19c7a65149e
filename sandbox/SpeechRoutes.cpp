// A text as sound.
#include "SandboxCrypto.h"
#include "SandboxFailure.h"
#include "SandboxRouter.h"
#include "SandboxServices.h"
#include "SpeechSynthesizer.h"

namespace lmp::sandbox {

namespace {

constexpr std::size_t mostUnits = 500;

/// UTF-16 code units of a UTF-8 text.
std::size_t unitsOf(const std::string &text) {
    std::size_t units = 0;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        units += (value & 0xc0) != 0x80;
        units += value >= 0xf0;
    }
    return units;
}

SandboxAnswer speak(SandboxServices &services, const SandboxRequest &request) {
    services.tokens.userOf(request);
    const auto body = request.json();
    const auto text = JsonFields(body).text("text", JsonFields::anyLength);
    if (text.empty() || unitsOf(text) > mostUnits)
        throw SandboxFailure::badField("text", "1 到 500 个字符");
    const auto sound = SpeechSynthesizer(services.options.speechProgram).speak(text);
    if (sound.failure == SpeechSynthesizer::Failure::notInstalled)
        throw SandboxFailure(503, "tts_unavailable", "沙盒里没有装 espeak-ng，不能朗读。");
    if (sound.failure)
        throw SandboxFailure(503, "tts_failed", "这段文字没能念出来。");
    return SandboxAnswer::json(
        {{"audio", base64(sound.wav)}, {"encoding", "wav"}, {"voice", SpeechSynthesizer::voice}});
}

} // namespace

void addSpeechRoutes(SandboxRouter &router, SandboxServices &services) {
    router.post("/api/tts", [&services](const SandboxRequest &request) { return speak(services, request); });
}

} // namespace lmp::sandbox
