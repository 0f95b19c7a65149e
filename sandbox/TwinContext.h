// Everything a reply may draw on. A plain value.
#pragma once
#include "TurnRequest.h"
#include "TwinMemory.h"
#include <optional>
#include <vector>

namespace lmp::sandbox {

struct TwinContext {
    std::vector<ChatTurn> messages;   ///< oldest first; the last is the user's
    std::vector<TwinMemory> memories; ///< from before this turn
    std::vector<TwinMemory> fresh;    ///< said in this very turn
    std::optional<std::string> crisisLayer;
    std::string companion;
    std::string mode;
    bool incognito = false;
    bool brief = false;
    unsigned variation = 0; ///< another number, another way of putting it
    int hour = 12;          ///< of the user's day
    std::string today;      ///< e.g. "2026年3月5日 星期四 14:05"

    const std::string &userText() const { return messages.back().content; }
};

} // namespace lmp::sandbox
