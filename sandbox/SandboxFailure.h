// An answer that is an error: thrown by whatever finds the fault, turned into one JSON body by SandboxServer. A plain
// value; any thread.
#pragma once
#include <cstdint>
#include <exception>
#include <optional>
#include <string>

namespace lmp::sandbox {

/// One refused request. `reason` is the Chinese sentence a person reads, `code` what a program compares.
class SandboxFailure : public std::exception {
public:
    SandboxFailure(int status, std::string code, std::string reason)
        : status(status)
        , code(std::move(code))
        , reason(std::move(reason)) {}

    const char *what() const noexcept override { return code.c_str(); }

    /// The signed-in user is missing or unknown (401).
    static SandboxFailure unauthorized();
    /// The named thing does not exist, or belongs to somebody else (404, "not_found").
    static SandboxFailure notFound(std::string reason);
    /// The body cannot be used; the sentence names the field at fault (400, "bad_field").
    static SandboxFailure badField(const std::string &field, const std::string &expected);
    /// The account cannot pay for the turn (402); both numbers are whole Pip.
    static SandboxFailure insufficientPip(std::int64_t needed, std::int64_t balance);

    int status;
    std::string code;
    std::string reason;
    std::optional<std::int64_t> needed;
    std::optional<std::int64_t> balance;
};

} // namespace lmp::sandbox
