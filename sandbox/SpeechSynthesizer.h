// Speaks a short text through espeak-ng, where that is installed. Free of state but its limits; any thread, and it
// blocks until the sound is there or the time is over.
#pragma once
#include <chrono>
#include <optional>
#include <string>

namespace lmp::sandbox {

class SpeechSynthesizer {
public:
    enum class Failure { notInstalled, failed };
    struct Outcome {
        std::string wav; ///< empty when it failed
        std::optional<Failure> failure;
    };
    static constexpr const char *voice = "cmn"; ///< Mandarin

    explicit SpeechSynthesizer(std::string program = "espeak-ng",
                               std::chrono::milliseconds limit = std::chrono::seconds(15))
        : m_program(std::move(program))
        , m_limit(limit) {}

    /// @param text UTF-8. The program gets it on its standard input, never on a command line.
    Outcome speak(const std::string &text) const;

private:
    std::string m_program;
    std::chrono::milliseconds m_limit;
};

} // namespace lmp::sandbox
