#include "ModelReply.h"
#include "sandbox/SandboxFixture.h"

#include <future>
#include <thread>

namespace lmp::sandbox {

namespace {

/// A small OpenAI-compatible endpoint that plays a script.
class ModelStub {
public:
    using Script = std::function<void(const httplib::Request &, httplib::Response &)>;

    explicit ModelStub(Script script) {
        m_server.Post(R"(/.*)",
                      [this, script = std::move(script)](const httplib::Request &request, httplib::Response &response) {
                          path = request.path;
                          key = request.get_header_value("Authorization");
                          body = request.body;
                          script(request, response);
                      });
        m_port = m_server.bind_to_any_port("127.0.0.1");
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
        while (!m_server.is_running())
            std::this_thread::yield();
    }
    ~ModelStub() {
        m_server.stop();
        m_thread.join();
    }
    std::string url() const { return "http://127.0.0.1:" + std::to_string(m_port); }

    std::string path;
    std::string key;
    std::string body;

private:
    httplib::Server m_server;
    std::thread m_thread;
    int m_port = 0;
};

std::string delta(const std::string &text) {
    return "data: " + boost::json::serialize(boost::json::object{{"choices", {{{"delta", {{"content", text}}}}}}}) +
           "\n\n";
}

ModelStub::Script events(const std::string &bytes) {
    return [bytes](const httplib::Request &, httplib::Response &response) {
        response.set_content(bytes, "text/event-stream");
    };
}

class ModelReplyTest : public SandboxFixture {
protected:
    void startWith(const ModelStub &stub) {
        options.modelUrl = stub.url();
        options.modelKey = "key-1";
        options.modelName = "tiny";
        start();
        m_token = signIn();
    }
    std::string m_token;
};

TEST_F(ModelReplyTest, DeltasStreamThroughWithTheMemoriesInThePrompt) {
    std::promise<void> firstSeen;
    auto seen = firstSeen.get_future().share();
    // The second half is only sent once the first has arrived at the far end.
    ModelStub stub([seen](const httplib::Request &, httplib::Response &response) {
        response.set_chunked_content_provider("text/event-stream", [seen](std::size_t, httplib::DataSink &sink) {
            const auto first = delta("早") + delta("");
            sink.write(first.data(), first.size());
            seen.wait();
            const auto rest = delta("上好") + "data: [DONE]\n\n";
            sink.write(rest.data(), rest.size());
            sink.done();
            return true;
        });
    });
    startWith(stub);
    bool told = false;
    StreamAnswer answer;
    httplib::Request request;
    request.method = "POST";
    request.path = "/api/relay/chat/stream";
    request.headers = headersFor(m_token);
    request.body = boost::json::serialize(turn("你好，我喜欢爬山"));
    request.content_receiver = [&](const char *data, std::size_t size, std::uint64_t, std::uint64_t) {
        answer.bytes.append(data, size);
        if (!told && answer.bytes.find("早") != std::string::npos) {
            told = true;
            firstSeen.set_value();
        }
        return true;
    };
    EXPECT_TRUE(client().send(request));
    answer.frames = framesOf(answer.bytes);
    EXPECT_EQ(answer.text(), "早上好");
    EXPECT_EQ(answer.last().at("done"), true);
    EXPECT_EQ(stub.path, "/v1/chat/completions");
    EXPECT_EQ(stub.key, "Bearer key-1");

    EXPECT_EQ(post("/api/relay/chat", turn("你好"), m_token)["model"], "tiny");
    const auto prompt = boost::json::parse(stub.body).at("messages").at(0);
    EXPECT_EQ(prompt.at("role"), "system");
    EXPECT_NE(std::string(prompt.at("content").as_string()).find("喜欢爬山"), std::string::npos);
    EXPECT_EQ(chargeCount(m_token), 2u);
}

TEST_F(ModelReplyTest, FailuresBeforeAnyTextAreErrorsAndAfterItAborts) {
    struct Case {
        const char *name;
        ModelStub::Script script;
        std::string text; ///< what arrives before the abort; empty for an HTTP error
    };
    for (const auto &[name, script, text] : std::vector<Case>{
             {"status", [](const httplib::Request &, httplib::Response &response) { response.status = 401; }, ""},
             {"nothing", events("data: [DONE]\n\n"), ""},
             {"no json", events("data: {oops\n\n"), ""},
             {"error object", events("data: {\"error\":{\"message\":\"x\"}}\n\n"), ""},
             {"html",
              [](const httplib::Request &, httplib::Response &response) { response.set_content("<p>", "text/html"); },
              ""},
             {"cut short", events(delta("半句")), "半句"},
             {"error later", events(delta("半句") + "data: {\"error\":1}\n\n"), "半句"}}) {
        ModelStub stub(script);
        startWith(stub);
        const auto answer = stream(m_token, turn("你好"));
        EXPECT_EQ(answer.status, text.empty() ? 502 : 200) << name;
        EXPECT_EQ(answer.text(), text) << name;
        if (!text.empty())
            EXPECT_EQ(answer.last().at("error"), "stream_aborted") << name;
        EXPECT_EQ(post("/api/relay/chat", turn("你好"), m_token)["error"], "upstream_failed") << name;
        EXPECT_EQ(chargeCount(m_token), 0u) << name;
    }
}

TEST_F(ModelReplyTest, AnAnswerInOnePieceWillDo) {
    ModelStub stub([](const httplib::Request &, httplib::Response &response) {
        response.set_content(R"({"choices":[{"message":{"content":"整段"},"finish_reason":"stop"}]})",
                             "application/json");
    });
    startWith(stub);
    EXPECT_EQ(stream(m_token, turn("你好")).text(), "整段");
}

TEST_F(ModelReplyTest, AReaderWhoLeavesEndsTheUpstreamRequest) {
    std::promise<void> ended;
    ModelStub stub([&](const httplib::Request &, httplib::Response &response) {
        response.set_chunked_content_provider(
            "text/event-stream",
            [](std::size_t offset, httplib::DataSink &sink) {
                const auto piece = offset == 0 ? delta("慢") : std::string(": \n");
                return sink.is_writable() && sink.write(piece.data(), piece.size());
            },
            [&](bool) { ended.set_value(); });
    });
    startWith(stub);
    EXPECT_EQ(stream(m_token, turn("你好"), 1).text(), "慢");
    EXPECT_EQ(ended.get_future().wait_for(std::chrono::seconds(30)), std::future_status::ready);
    EXPECT_TRUE(awaitStreams(0));
    EXPECT_EQ(chargeCount(m_token), 0u);
}

TEST_F(ModelReplyTest, AnUnreachableModelIsAnErrorNotAHang) {
    {
        ModelStub gone(events(""));
        options.modelUrl = gone.url();
    }
    start();
    EXPECT_EQ(post("/api/relay/chat", turn("你好"), signIn())["error"], "upstream_failed");
}

TEST(ModelEndpointTest, UrlsWithAndWithoutTheirVersion) {
    struct Case {
        const char *url;
        const char *site;
        const char *path;
    };
    for (const auto &[url, site, path] : {Case{"http://h:1", "http://h:1", "/v1/chat/completions"},
                                          {"http://h:1/", "http://h:1", "/v1/chat/completions"},
                                          {"https://h/v1/", "https://h", "/v1/chat/completions"},
                                          {"https://h/a/v4", "https://h", "/a/v4/chat/completions"},
                                          {"https://h/a", "https://h", "/a/v1/chat/completions"},
                                          {"https://h/x/chat/completions", "https://h", "/x/chat/completions"}}) {
        const auto endpoint = ModelEndpoint::fromUrl(url, {}, {});
        EXPECT_EQ(endpoint.site, site) << url;
        EXPECT_EQ(endpoint.path, path) << url;
    }
}

} // namespace

} // namespace lmp::sandbox
