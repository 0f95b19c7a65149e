// What the twin remembers of each user. Owned by SandboxServices; any thread.
#pragma once
#include "TwinMemory.h"
#include <vector>

namespace lmp::sandbox {

class SandboxDatabase;
struct SandboxOptions;

class TwinMemories {
public:
    TwinMemories(SandboxDatabase &database, const SandboxOptions &options);

    /// What the twin may use, oldest first.
    std::vector<TwinMemory> of(const std::string &userId);
    /// A memory with a slot takes the place of the one that held it; a known content changes nothing, and one that was
    /// forgotten stays forgotten.
    void remember(const std::string &userId, const std::vector<TwinMemory> &memories);

private:
    SandboxDatabase &m_database;
    const SandboxOptions &m_options;
};

} // namespace lmp::sandbox
