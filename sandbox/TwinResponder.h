// The offline twin: answers in Chinese from what the conversation and the memories hold, and says once in a
// conversation that it is the offline twin. It understands a handful of intents and otherwise takes up the user's own
// words. Pure and deterministic; any thread.
#pragma once
#include "TwinContext.h"
#include <set>

namespace lmp::sandbox {

class TwinResponder {
public:
    struct Reply {
        std::string text;
        std::vector<TwinMemory> used;
    };

    static Reply reply(const TwinContext &context);

private:
    explicit TwinResponder(const TwinContext &context);

    using Intent = std::optional<std::string> (TwinResponder::*)();

    std::optional<std::string> crisis();
    std::optional<std::string> askedWhatIsRemembered();
    std::optional<std::string> askedOneThing();
    std::optional<std::string> askedWhoAreYou();
    std::optional<std::string> askedEarlierWords();
    std::optional<std::string> learned();
    std::optional<std::string> greeted();
    std::optional<std::string> tookLeave();
    std::optional<std::string> askedTime();
    std::optional<std::string> spokeOfFeeling();
    std::optional<std::string> askedToChoose();
    std::optional<std::string> askedForKnowledge();
    std::string takenUp();

    const TwinMemory *inSlot(const std::string &slot) const;
    const TwinMemory *related();
    std::string earlierMention() const;
    std::string name();
    void use(const TwinMemory &memory);
    bool says(const std::vector<std::string_view> &words) const;
    std::string pick(const std::vector<std::string> &choices) const;

    const TwinContext &m_context;
    std::string m_text;
    std::vector<std::string> m_earlier; ///< the user's turns before this one
    std::vector<TwinMemory> m_used;
};

} // namespace lmp::sandbox
