#include "screens/chat/ChatServices.h"

#include "app/Application.h"
#include "platform/SystemAudioOutput.h"

namespace lmp {

ChatServices ChatServices::of(Application &application) {
    return {.api = application.api(),
            .events = application.events(),
            .account = application.account(),
            .drafts = application.drafts(),
            .inputs = application.inputs(),
            .clock = &application.clock(),
            .safety = &application.safety(),
            .recorder = application.recorder(),
            .opener = &application.opener(),
            .makeAudio = [] { return std::make_unique<SystemAudioOutput>(); },
            .search = &application.search(),
            .extractions = &application.extractions()};
}

} // namespace lmp
