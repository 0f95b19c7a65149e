// What the client posts for one turn of chat, on either route. A plain value.
#pragma once
#include <boost/json.hpp>
#include <string>
#include <vector>

namespace lmp::sandbox {

struct ChatTurn {
    std::string role; ///< "user" or "assistant"
    std::string content;
};

struct TurnRequest {
    std::vector<ChatTurn> messages; ///< oldest first; the last is the user's
    int maxTokens = 800;
    std::string companion;
    std::string mode;
    bool incognito = false;

    /// Throws SandboxFailure 400 naming what is wrong.
    static TurnRequest fromJson(const boost::json::object &object);
    const std::string &userText() const { return messages.back().content; }
    /// The price in whole Pip: short replies are cheaper.
    int cost() const { return maxTokens <= 300 ? 1 : 3; }
};

} // namespace lmp::sandbox
