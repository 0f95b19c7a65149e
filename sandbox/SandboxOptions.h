// How one sandbox runs: filled from the command line and the environment by main, or by hand in tests. A plain value.
#pragma once
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace lmp::sandbox {

struct SandboxOptions {
    int port = 0; ///< 0 takes any free one
    std::filesystem::path state;
    bool exitWithParent = false;
    int paceMs = 25; ///< between two pieces of an offline reply
    int streamCap = 16;
    int poolSize = 48;          ///< threads for requests; must be larger than the cap
    int continuousMinutes = 60; ///< of talking before the reminder
    int guestRounds = 5;
    int connectionGraceSeconds = 2; ///< how long a connection may stay silent before its request
    std::int64_t startingBalance = 1000;
    std::vector<std::string> googleClientIds{"lumenpair-desktop"};
    std::string modelUrl; ///< empty: the twin answers offline
    std::string modelKey;
    std::string modelName;
    std::string speechProgram = "espeak-ng"; ///< what speaks; nothing does where it is not installed
    std::function<std::int64_t()> clock;     ///< milliseconds since 1970; the system's when empty

    /// What the command line may ask for instead of running.
    enum class Request { help, version };

    /// Options, a request for text, or a Chinese sentence that says what is wrong with the arguments.
    static std::variant<SandboxOptions, Request, std::string> parse(const std::vector<std::string> &arguments);
    static std::string helpText();
    /// Milliseconds since 1970.
    std::int64_t now() const;
};

} // namespace lmp::sandbox
