// A reply that an OpenAI-compatible endpoint writes, forwarded as it arrives. One thread of its own reads the
// endpoint's stream into a queue; destroying the reply shuts that connection and joins the thread. The text is bounded;
// what the endpoint sends beyond all measure counts as a failure.
#pragma once
#include "ReplySource.h"
#include "TurnRequest.h"
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace httplib {
class Client;
}

namespace lmp::sandbox {

/// Where the endpoint is, split out of what the person set.
struct ModelEndpoint {
    std::string site; ///< "http://127.0.0.1:8000"
    std::string path; ///< "/v1/chat/completions"
    std::string key;
    std::string model;

    /// `url` with or without its version folder ("/v1" when it has none), with or without a slash at its end.
    static ModelEndpoint fromUrl(const std::string &url, std::string key, std::string model);
};

class ModelReply : public ReplySource {
public:
    ModelReply(const ModelEndpoint &endpoint, const std::vector<ChatTurn> &messages, int maxTokens);
    ~ModelReply() override;

    Piece next(std::chrono::milliseconds patience) override;
    /// Waits until the first text, the end or a failure is there; false when `patience` passed first.
    bool settle(std::chrono::milliseconds patience);
    /// True when the reply failed or ended before it had any text; meaningful once settled.
    bool isVoid() const;

private:
    void run(const std::string &path, const std::string &key, const std::string &body);
    bool takeBytes(std::string_view bytes);
    void takeLine(std::string_view line);
    void takeWhole();
    void push(std::string text);
    void end(Piece::Kind how);

    std::unique_ptr<httplib::Client> m_client;
    mutable std::mutex m_mutex;
    std::condition_variable m_condition;
    std::deque<std::string> m_queue;
    std::size_t m_total = 0;
    Piece::Kind m_end = Piece::Kind::waiting; ///< finished or failed once known
    bool m_done = false;                      ///< the thread has left the client
    bool m_abandoned = false;

    // The reading thread's own.
    bool m_isStream = true;
    bool m_sawEnd = false;
    std::string m_buffer;
    std::thread m_thread;
};

} // namespace lmp::sandbox
