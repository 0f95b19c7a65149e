#pragma once

#include "conversation/ChatWithTwinView.h"
#include "conversation/ConversationInputDraftStore.h"
#include "conversation/TTSPlayer.h"
#include "platform/ExternalOpener.h"

namespace lmp {

class Application;
class ConversationSearch;
class ExtractionProgress;

/// What a chat's screen needs of the program.
///
/// A value; clock, safety, opener, search and extractions outlive whoever holds it.
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
    TTSPlayer::MakeOutput makeAudio = {};
    ConversationSearch *search = nullptr;      ///< null where nothing is indexed
    ExtractionProgress *extractions = nullptr; ///< null where windows share none

    static ChatServices of(Application &application);
};

} // namespace lmp
