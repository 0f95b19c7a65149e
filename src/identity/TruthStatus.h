#pragma once

#include "identity/MemoryTruth.h"

#include <QString>

namespace lmp {

/// How sure a memory is, as it is told to its owner: one case for each MemoryTruth, in the same order. A value; stored
/// as nothing but its memory.
class TruthStatus {
public:
    enum Value { youSaid, yourPreference, iInferred, storySetting };

    constexpr TruthStatus(Value value)
        : m_value(value) {}
    constexpr explicit TruthStatus(MemoryTruth truth)
        : m_value(Value(int(truth))) {}
    constexpr operator Value() const { return m_value; }

    QString label() const;

private:
    Value m_value;
};

} // namespace lmp
