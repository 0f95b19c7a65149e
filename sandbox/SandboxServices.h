// Everything one sandbox consists of behind its routes. Owned by SandboxServer, made before the first request and gone
// after the last; each part says for itself which threads may use it (any).
#pragma once
#include "AppleTokens.h"
#include "FaultTable.h"
#include "GoogleProvider.h"
#include "GuestTrials.h"
#include "MemoryLedger.h"
#include "PipLedger.h"
#include "SandboxAccounts.h"
#include "SandboxConversations.h"
#include "SandboxDatabase.h"
#include "SandboxOptions.h"
#include "SessionTokens.h"
#include "StopSignal.h"
#include "StreamSlots.h"
#include "TelemetryLog.h"
#include "TwinMemories.h"
#include "TwinVoice.h"
#include "UsageWatch.h"
#include "VerificationCodes.h"

namespace lmp::sandbox {

struct SandboxServices {
    explicit SandboxServices(SandboxOptions given)
        : options(std::move(given))
        , database(options.state)
        , tokens(database, options)
        , accounts(database, options)
        , codes(database, options)
        , guests(database, options)
        , conversations(database)
        , memories(database, options)
        , memoryLedger(database, options)
        , ledger(database, options)
        , usage(database, options)
        , telemetry(database, options)
        , google(database, options)
        , apple(database, options)
        , voice(options, stop)
        , slots(options.streamCap) {}

    const SandboxOptions options;
    StopSignal stop;
    SandboxDatabase database;
    SessionTokens tokens;
    SandboxAccounts accounts;
    VerificationCodes codes;
    GuestTrials guests;
    SandboxConversations conversations;
    TwinMemories memories;
    MemoryLedger memoryLedger;
    PipLedger ledger;
    UsageWatch usage;
    TelemetryLog telemetry;
    GoogleProvider google;
    AppleTokens apple;
    TwinVoice voice;
    FaultTable faults;
    StreamSlots slots;
};

} // namespace lmp::sandbox
