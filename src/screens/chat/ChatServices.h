#pragma once

#include "conversation/ChatWithTwinView.h"
#include "conversation/ConversationInputDraftStore.h"
#include "platform/ExternalOpener.h"

namespace lmp {

class Application;

/// What a chat's screen needs of the program.
///
/// A value; clock, safety and opener outlive whoever holds it.
struct ChatServices {
    APIClient api;
    SSEClient events;
    ConversationAccount account;
    ConversationDraftCache drafts;
    ConversationInputDraftStore inputs;
    Clock *clock = nullptr;
    SafetyGateStore *safety = nullptr;
    ChatWithTwinView::Recorder recorder;
    ExternalOpener *opener = nullptr;

    static ChatServices of(Application &application);
};

} // namespace lmp
