// A sandbox in this very process, on a free port and a state file of its own, with a clock that is turned by hand.
#pragma once
#include "SandboxServer.h"

#include <atomic>
#include <boost/json.hpp>
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <httplib.h>

namespace lmp::sandbox {

struct HttpAnswer {
    int status = -1;
    std::string text;
    httplib::Headers headers;

    boost::json::object json() const {
        boost::json::error_code error;
        auto value = boost::json::parse(text, error);
        return value.is_object() ? value.as_object() : boost::json::object();
    }
    /// A string field of the body, or empty.
    std::string operator[](const char *key) const {
        const auto object = json();
        const auto *value = object.if_contains(key);
        return value && value->is_string() ? std::string(value->as_string()) : std::string();
    }
    std::int64_t number(const char *key) const {
        const auto object = json();
        const auto *value = object.if_contains(key);
        return value && value->is_int64() ? value->as_int64() : -1;
    }
};

/// What came of one streamed reply.
struct StreamAnswer {
    int status = -1;
    bool orderly = false; ///< the body ended as HTTP wants it
    std::string bytes;
    std::vector<boost::json::object> frames;

    std::string text() const {
        std::string whole;
        for (const auto &frame : frames)
            if (const auto *delta = frame.if_contains("delta"))
                whole += std::string(delta->as_string());
        return whole;
    }
    /// The last frame, or an empty object.
    boost::json::object last() const { return frames.empty() ? boost::json::object() : frames.back(); }
};

class SandboxFixture : public ::testing::Test {
public:
    ~SandboxFixture() override {
        server.reset();
        std::filesystem::remove_all(m_folder);
    }

protected:
    SandboxFixture() {
        std::string name = (std::filesystem::temp_directory_path() / "sandbox-XXXXXX").string();
        m_folder = mkdtemp(name.data());
        options.state = m_folder / "state" / "state.sqlite";
        options.paceMs = 0;
        options.connectionGraceSeconds = 1;
        options.clock = [this] {
            return now.load();
        };
    }

    void start() {
        server.reset();
        server = std::make_unique<SandboxServer>(options);
        ASSERT_TRUE(server->start());
    }

    httplib::Client client() const {
        httplib::Client client("127.0.0.1", server->port());
        client.set_read_timeout(30);
        return client;
    }

    static httplib::Headers headersFor(const std::string &token) {
        return token.empty() ? httplib::Headers{} : httplib::Headers{{"X-Access-Token", token}};
    }

    static HttpAnswer wrap(const httplib::Result &result) {
        return result ? HttpAnswer{result->status, result->body, result->headers} : HttpAnswer{};
    }

    HttpAnswer get(const std::string &path, const std::string &token = {}) const {
        return wrap(client().Get(path, headersFor(token)));
    }
    HttpAnswer post(const std::string &path, const std::string &body, const std::string &token = {}) const {
        return wrap(client().Post(path, headersFor(token), body, "application/json"));
    }
    HttpAnswer post(const std::string &path, const boost::json::object &body, const std::string &token = {}) const {
        return post(path, boost::json::serialize(body), token);
    }

    /// Signs in by SMS, creating the account, and returns the token.
    std::string signIn(const std::string &phone = "13800138000") const {
        const auto code = post("/api/app/auth/sms", {{"phone", phone}, {"dialCode", "+86"}})["devCode"];
        return post("/api/app/auth/sms-login", {{"phone", phone}, {"dialCode", "+86"}, {"code", code}})["token"];
    }

    static boost::json::object turn(const std::string &text, int maxTokens = 800, bool incognito = false) {
        return {{"messages", {{{"role", "user"}, {"content", text}}}},
                {"maxTokens", maxTokens},
                {"incognito", incognito},
                {"surface", "test"}};
    }

    /// Reads a streamed reply to its end, or until `mostFrames` frames are there.
    StreamAnswer stream(const std::string &token, const boost::json::object &body, std::size_t mostFrames = 10'000) {
        auto connection = client();
        return stream(connection, token, body, mostFrames);
    }
    StreamAnswer stream(httplib::Client &connection, const std::string &token, const boost::json::object &body,
                        std::size_t mostFrames = 10'000) {
        StreamAnswer answer;
        httplib::Request request;
        request.method = "POST";
        request.path = "/api/relay/chat/stream";
        request.headers = headersFor(token);
        request.headers.emplace("Content-Type", "application/json");
        request.body = boost::json::serialize(body);
        request.response_handler = [&](const httplib::Response &response) {
            answer.status = response.status;
            return true;
        };
        request.content_receiver = [&](const char *data, std::size_t size, std::uint64_t, std::uint64_t) {
            answer.bytes.append(data, size);
            answer.frames = framesOf(answer.bytes);
            return answer.frames.size() < mostFrames;
        };
        answer.orderly = static_cast<bool>(connection.send(request));
        return answer;
    }

    static std::vector<boost::json::object> framesOf(const std::string &bytes) {
        std::vector<boost::json::object> frames;
        std::size_t start = 0;
        for (auto end = bytes.find("\n\n"); end != std::string::npos; end = bytes.find("\n\n", start)) {
            const auto block = bytes.substr(start, end - start);
            start = end + 2;
            boost::json::error_code error;
            const auto value = block.starts_with("data: ") ? boost::json::parse(block.substr(6), error) : nullptr;
            if (!error && value.is_object())
                frames.push_back(value.as_object());
        }
        return frames;
    }

    std::size_t chargeCount(const std::string &token) const {
        return get("/sandbox/charges", token).json().at("charges").as_array().size();
    }
    std::int64_t balance(const std::string &token) const { return get("/sandbox/charges", token).number("balance"); }

    /// Asks again and again until so many streams are open; false after a generous while.
    bool awaitStreams(int count) const {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (std::chrono::steady_clock::now() < deadline)
            if (get("/sandbox/status").number("streams") == count)
                return true;
        return false;
    }

    std::filesystem::path folder() const { return m_folder; }

    std::atomic<std::int64_t> now = 1'800'000'000'000;
    SandboxOptions options;
    std::unique_ptr<SandboxServer> server;

private:
    std::filesystem::path m_folder;
};

} // namespace lmp::sandbox
