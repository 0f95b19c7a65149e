// The faults that are switched on, and how often each may still strike. In memory only: a restart clears them. Owned by
// SandboxServices; any thread.
#pragma once
#include "FaultRule.h"
#include <mutex>
#include <vector>

namespace lmp::sandbox {

class FaultTable {
public:
    void add(FaultRule rule);
    void clear();
    /// {"faults": [...]} with what is left of each.
    boost::json::object toJson() const;
    /// The oldest rule that matches `path`, with one of its times used up.
    std::optional<FaultRule> take(const std::string &path);

private:
    mutable std::mutex m_mutex;
    std::vector<FaultRule> m_rules;
};

} // namespace lmp::sandbox
