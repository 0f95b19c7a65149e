#pragma once

#include "identity/ContinuousUseNotice.h"
#include "identity/CrisisSignal.h"
#include "identity/SafetyEnvelope.h"

#include <boost/json/value.hpp>

namespace lmp {

/// Lifts the safety blocks out of an answer of the twin or of a call.
///
/// Lenient on purpose: what is wrong with one field costs that field alone, so that a person in distress sees the rest.
/// Free of state; any thread.
class SafetyExtraction {
public:
    /// @param answer the parsed answer, with its block under "safety"
    static std::optional<CrisisSignal> crisis(const boost::json::value &answer);
    /// @param answer the parsed answer, with its block under "continuousUse"
    static std::optional<ContinuousUseNotice> continuousUse(const boost::json::value &answer);

    /// What can be read of the block itself; none when it is no object.
    static std::optional<SafetyEnvelope> envelope(const boost::json::value &safety);
    /// None unless the envelope says outright that this is a crisis.
    static std::optional<CrisisSignal> signal(const SafetyEnvelope &envelope);
    /// The notice in the block itself.
    static std::optional<ContinuousUseNotice> notice(const boost::json::value &block);
};

} // namespace lmp
