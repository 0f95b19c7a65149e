#include "sandbox/SandboxFixture.h"

#include <csignal>
#include <future>
#include <sys/wait.h>
#include <unistd.h>

namespace lmp::sandbox {

namespace {

class SandboxServerTest : public SandboxFixture {};

TEST_F(SandboxServerTest, OnlyThisMachineAndNoForeignPages) {
    start();
    const auto port = std::to_string(server->port());
    const auto asked = [&](const httplib::Headers &headers) {
        return client().Get("/api/app/crisis-resources", headers)->status;
    };
    EXPECT_EQ(asked({{"Host", "localhost:" + port}}), 200);
    EXPECT_EQ(asked({{"Origin", "http://127.0.0.1:" + port}}), 200);
    for (const auto &headers : {httplib::Headers{{"Host", "evil.com"}},
                                {{"Host", "127.0.0.1:1"}},
                                {{"Host", "127.0.0.1"}},
                                {{"Origin", "http://evil.com"}},
                                {{"Origin", "null"}}})
        EXPECT_EQ(asked(headers), 403) << headers.begin()->second;
}

TEST_F(SandboxServerTest, StateSurvivesARestartAndStaysPrivate) {
    start();
    const auto token = signIn();
    post("/api/relay/chat", turn("我叫小满"), token);
    post("/api/app/conversation/sync",
         {{"conversation", {{"id", "c"}, {"title", "t"}, {"messages", boost::json::array()}}}}, token);
    start();
    EXPECT_EQ(get("/api/app/auth/me", token).status, 200);
    EXPECT_EQ(balance(token), 997);
    EXPECT_EQ(get("/api/app/conversation?id=c", token).json().at("conversation").at("revision"), 1);
    EXPECT_NE(post("/api/relay/chat", turn("我叫什么"), token)["text"].find("小满"), std::string::npos);
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(options.state).permissions(), perms::owner_read | perms::owner_write);
    EXPECT_EQ(std::filesystem::status(options.state.parent_path()).permissions(), perms::owner_all);
}

TEST_F(SandboxServerTest, TwoOnOneFileKeepItWhole) {
    start();
    const auto token = signIn();
    SandboxServer second(options);
    ASSERT_TRUE(second.start());
    std::vector<std::future<int>> turns;
    turns.reserve(16);
    for (int i = 0; i < 16; ++i)
        turns.push_back(std::async(std::launch::async, [&, i] {
            httplib::Client client("127.0.0.1", i % 2 ? second.port() : server->port());
            client.set_read_timeout(60);
            const auto answer =
                client.Post("/api/relay/chat", headersFor(token),
                            boost::json::serialize(turn("记住：第" + std::to_string(i) + "件事")), "application/json");
            return answer ? answer->status : -1;
        }));
    for (auto &one : turns)
        EXPECT_EQ(one.get(), 200);
    EXPECT_EQ(chargeCount(token), 16u);
    EXPECT_EQ(balance(token), 1000 - 48);
    EXPECT_EQ(get("/sandbox/memories", token).json().at("memories").as_array().size(), 16u);
}

TEST_F(SandboxServerTest, BadRequestsGetAnErrorAndNothingWorse) {
    start();
    const auto token = signIn();
    const auto sync = [&](const std::string &body) {
        return post("/api/app/conversation/sync", body, token);
    };
    for (const std::string &body :
         {std::string(), std::string("{"), std::string("[]"), std::string("nul"), std::string("{\"a\":\"\xC3\x28\"}"),
          std::string(100'000, '['), "{\"conversation\":" + std::string(60'000, '{')})
        EXPECT_EQ(sync(body)["error"], "bad_json") << body.substr(0, 20);
    EXPECT_EQ(get("/api/nowhere").status, 404);
    EXPECT_EQ(get("/api/app/auth/sms")["error"], "method_not_allowed");
    EXPECT_EQ(get("/api/app/crisis-resources?region=%FF").status, 400) << "echoed, it would spoil the answer";
    EXPECT_EQ(get("/api/app/crisis-resources?region=%E4%B8%AD").status, 200);
    EXPECT_EQ(get("/api/app/crisis-resources?region=" + std::string(5000, 'x')).status, 414);
    EXPECT_EQ(wrap(client().Post("/api/app/auth/sms", "x", "multipart/form-data; boundary=b")).status, 400);
    EXPECT_EQ(get("/api/app/conversation?id='%20OR%20'1'='1", token).status, 404);
}

TEST_F(SandboxServerTest, HugeBodiesAreRefusedDeclaredOrNot) {
    start();
    const auto token = signIn();
    const std::string body = "{\"x\":\"" + std::string(17UL * 1024 * 1024, 'x') + "\"}";
    const auto declared = post("/api/app/conversation/sync", body, token);
    EXPECT_EQ(declared.status, 413);
    EXPECT_EQ(declared["error"], "too_large");
    const auto chunked = wrap(client().Post(
        "/api/app/conversation/sync", headersFor(token),
        [&](std::size_t offset, httplib::DataSink &sink) {
            if (offset >= body.size())
                sink.done();
            else
                sink.write(body.data() + offset, std::min<std::size_t>(65536, body.size() - offset));
            return true;
        },
        "application/json"));
    EXPECT_EQ(chunked.status, 413);
    EXPECT_EQ(get("/api/app/auth/me", token).status, 200);
}

TEST_F(SandboxServerTest, TelemetryIsReadBackInOrderAndOnce) {
    start();
    const auto event = [](const std::string &id) {
        return boost::json::object{{"eventId", id},
                                   {"eventName", "stability.x"},
                                   {"occurredAt", "t"},
                                   {"subject", {{"type", "app"}, {"id", "a"}}},
                                   {"metrics", {{"duration", 1.5}}},
                                   {"props", {{"s", "x"}, {"n", nullptr}}},
                                   {"schemaVersion", 1}};
    };
    const auto batch = [&](boost::json::array events) {
        return boost::json::object{{"context", {{"platform", "macos"}}},
                                   {"consent", {{"essential", true}, {"product", false}}},
                                   {"events", std::move(events)},
                                   {"sentAt", "t"}};
    };
    EXPECT_EQ(post("/api/telemetry/events", batch({event("evt_2"), event("evt_1")})).json().at("ok"), true);
    EXPECT_EQ(post("/api/telemetry/events", batch({event("evt_1"), event("evt_3")})).status, 200) << "sent again";
    auto broken = event("evt_4");
    broken.erase("props");
    EXPECT_EQ(post("/api/telemetry/events", batch({event("evt_5"), broken})).status, 400);
    std::vector<std::string> ids;
    const auto stored = get("/sandbox/telemetry").json().at("events").as_array();
    for (const auto &one : stored)
        ids.emplace_back(one.at("eventId").as_string());
    EXPECT_EQ(ids, (std::vector<std::string>{"evt_2", "evt_1", "evt_3"}));
    EXPECT_EQ(stored[0].at("consent").at("product"), false);
    EXPECT_EQ(stored[0].at("context").at("platform"), "macos");
    EXPECT_EQ(stored[0].at("props"), (boost::json::object{{"s", "x"}, {"n", nullptr}}));
}

TEST_F(SandboxServerTest, CareNeedsNoAccount) {
    start();
    EXPECT_EQ(get("/api/app/crisis-resources?region=GB").json().at("items").at(0).at("phone"), "116123");
    const auto table = get("/api/app/capabilities?platform=macos").json();
    EXPECT_EQ(table.at("platform"), "macos");
    EXPECT_EQ(table.at("features").at(0).at("level"), "degraded") << "the twin is offline";
    for (const auto &entry : table.at("features").as_array()) {
        const bool full = entry.at("level") == "full";
        EXPECT_EQ(entry.as_object().contains("note"), !full) << "what does not work says so: " << entry.at("id");
    }
    EXPECT_EQ(get("/downloads/desktop/mac/latest.json").json().at("build"), std::stoll(LMP_BUILD));
}

/// The program itself, started with pipes at both ends.
struct Program {
    pid_t pid = -1;
    int input = -1;
    std::string line;

    explicit Program(const std::filesystem::path &state) {
        int in[2];
        int out[2];
        if (pipe(in) != 0 || pipe(out) != 0)
            return;
        pid = fork();
        if (pid == 0) {
            dup2(in[0], 0);
            dup2(out[1], 1);
            for (const int handle : {in[0], in[1], out[0], out[1]})
                close(handle);
            execl(LMP_SANDBOX, LMP_SANDBOX, "--state", state.c_str(), "--exit-with-parent", nullptr);
            _exit(127);
        }
        close(in[0]);
        close(out[1]);
        input = in[1];
        char c = 0;
        while (read(out[0], &c, 1) == 1 && c != '\n')
            line += c;
        close(out[0]);
    }
    int exitCode() const {
        int status = 0;
        waitpid(pid, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
};

TEST_F(SandboxServerTest, TheProgramSaysWhereItIsAndEndsWithItsParentOrASignal) {
    start();
    auto taken = options;
    taken.port = server->port();
    EXPECT_FALSE(SandboxServer(taken).start()) << "a port belongs to one sandbox";
    for (const bool bySignal : {false, true}) {
        const Program program(options.state);
        const auto url = std::string(boost::json::parse(program.line).at("url").as_string());
        EXPECT_EQ(httplib::Client(url).Get("/api/app/crisis-resources")->status, 200);
        if (bySignal)
            kill(program.pid, SIGTERM);
        else
            close(program.input);
        EXPECT_EQ(program.exitCode(), 0);
        if (bySignal)
            close(program.input);
    }
}

} // namespace

} // namespace lmp::sandbox
