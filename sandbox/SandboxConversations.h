// Conversations as the client saved them, with their revisions. Every look-up is bound to its owner. Owned by
// SandboxServices; any thread. Failures are SandboxFailure.
#pragma once
#include <boost/json.hpp>
#include <cstdint>
#include <string>

namespace lmp::sandbox {

class SandboxDatabase;

class SandboxConversations {
public:
    explicit SandboxConversations(SandboxDatabase &database);

    /// Summaries, the one saved last first.
    boost::json::array list(const std::string &userId);
    /// The whole conversation with its revision; throws 404.
    boost::json::object load(const std::string &userId, const std::string &id);
    /// Stores `conversation` and returns its new revision. Throws 409 "conflict" unless it starts from the stored one
    /// (none or 0 for an unknown id), 400 when it is no conversation.
    std::int64_t save(const std::string &userId, const boost::json::object &conversation);

private:
    SandboxDatabase &m_database;
};

} // namespace lmp::sandbox
