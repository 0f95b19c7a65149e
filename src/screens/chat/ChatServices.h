#pragma once

#include "conversation/ChatWithTwinView.h"
#include "platform/ExternalOpener.h"
#include "screens/chat/ComposerInputFile.h"

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
    ComposerInputFile inputs;
    Clock *clock = nullptr;
    SafetyGateStore *safety = nullptr;
    ChatWithTwinView::Recorder recorder;
    ExternalOpener *opener = nullptr;

    static ChatServices of(Application &application);
};

} // namespace lmp
