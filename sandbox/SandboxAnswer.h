// What a route answers, before it meets the HTTP library: a whole body, or a stream still to be produced. A plain value
// made on the request's thread.
#pragma once
#include <boost/json.hpp>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lmp::sandbox {

class RelayStream;
class SandboxFailure;

struct SandboxAnswer {
    int status = 200;
    // The parameter also keeps the HTTP library from compressing the body, which would hide how faults split it.
    std::string contentType = "application/json; charset=utf-8";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;
    std::shared_ptr<RelayStream> stream; ///< set instead of `body` when the reply is an event stream

    static SandboxAnswer json(const boost::json::object &object, int status = 200);
    static SandboxAnswer failure(const SandboxFailure &failure);
    static SandboxAnswer html(std::string page, int status = 200);
    /// 302 to `location`, which the caller has checked and encoded.
    static SandboxAnswer redirect(std::string location);
    static SandboxAnswer events(std::shared_ptr<RelayStream> stream);
};

} // namespace lmp::sandbox
