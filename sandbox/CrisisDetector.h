// Judges whether a text speaks of wanting to die or of hurting oneself. A short list of phrases, meant for trying the
// client: it errs towards help, and only leaves out everyday exaggerations. Pure; any thread.
#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace lmp::sandbox {

class CrisisDetector {
public:
    /// "acute" (intent or harm named outright) or "elevated" (weariness of life), or none.
    static std::optional<std::string> layerOf(std::string_view text);
};

} // namespace lmp::sandbox
