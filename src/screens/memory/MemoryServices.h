#pragma once

#include "conversation/ConversationAccount.h"
#include "identity/MemoryService.h"

namespace lmp {

class MemoryInputs;

/// What the ledger's screens need of the program. A value; `inputs` outlives whoever holds it.
struct MemoryServices {
    MemoryService service;
    ConversationAccount account;
    MemoryInputs *inputs = nullptr;
};

} // namespace lmp
