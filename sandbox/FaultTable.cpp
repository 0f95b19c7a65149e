#include "FaultTable.h"

#include <algorithm>

namespace lmp::sandbox {

void FaultTable::add(FaultRule rule) {
    const std::lock_guard lock(m_mutex);
    if (rule.times != 0)
        m_rules.push_back(std::move(rule));
}

void FaultTable::clear() {
    const std::lock_guard lock(m_mutex);
    m_rules.clear();
}

boost::json::object FaultTable::toJson() const {
    const std::lock_guard lock(m_mutex);
    boost::json::array list;
    for (const auto &rule : m_rules)
        list.push_back(rule.toJson());
    return {{"faults", std::move(list)}};
}

std::optional<FaultRule> FaultTable::take(const std::string &path) {
    const std::lock_guard lock(m_mutex);
    const auto found =
        std::find_if(m_rules.begin(), m_rules.end(), [&](const FaultRule &rule) { return rule.matches(path); });
    if (found == m_rules.end())
        return std::nullopt;
    FaultRule rule = *found;
    if (found->times > 0)
        --found->times;
    if (found->times == 0)
        m_rules.erase(found);
    return rule;
}

} // namespace lmp::sandbox
