// Lets the twin speak: through the model when one is configured, offline otherwise. Owned by SandboxServices; any
// thread.
#pragma once
#include "ReplySource.h"
#include "TwinContext.h"
#include <memory>

namespace lmp::sandbox {

class StopSignal;
struct SandboxOptions;

class TwinVoice {
public:
    struct Speech {
        std::unique_ptr<ReplySource> source;
        std::vector<TwinMemory> used;
    };

    TwinVoice(const SandboxOptions &options, const StopSignal &stop);

    /// Starts a reply. With a model it waits for the first text, so that a model that fails is still an HTTP error:
    /// throws SandboxFailure 502 "upstream_failed". `paced` is false where nobody watches the text grow.
    Speech speak(TwinContext context, int maxTokens, bool paced) const;
    /// "offline-twin", or the model's name.
    std::string modelName() const;
    bool hasModel() const;

private:
    Speech askModel(const TwinContext &context, int maxTokens) const;

    const SandboxOptions &m_options;
    const StopSignal &m_stop;
};

} // namespace lmp::sandbox
