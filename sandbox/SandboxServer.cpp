#include "SandboxServer.h"

#include "RelayStream.h"
#include "SandboxFailure.h"
#include "SandboxRouter.h"
#include "SandboxServices.h"

#include <algorithm>
#include <cstdio>
#include <httplib.h>
#include <sqlite3.h>
#include <thread>

namespace lmp::sandbox {

namespace {

constexpr std::size_t largestBody = 16UL * 1024 * 1024;
constexpr std::size_t largestDrain = 4 * largestBody;
constexpr std::size_t longestTarget = 4096;

std::string tokenOf(const httplib::Request &request) {
    if (request.has_header("X-Access-Token"))
        return request.get_header_value("X-Access-Token");
    const auto header = request.get_header_value("Authorization");
    return header.starts_with("Bearer ") ? header.substr(7) : std::string();
}

ByteSink sinkFor(httplib::DataSink &sink) {
    return {[&sink](std::string_view bytes) { return sink.write(bytes.data(), bytes.size()); },
            [&sink] {
                return sink.is_writable();
            }};
}

} // namespace

class SandboxServer::Endpoint {
public:
    explicit Endpoint(SandboxServices &services)
        : m_services(services) {
        addAuthRoutes(m_router, services);
        addConversationRoutes(m_router, services);
        addRelayRoutes(m_router, services);
        addMemoryRoutes(m_router, services);
        addSpeechRoutes(m_router, services);
        addCareRoutes(m_router, services);
        addControlRoutes(m_router, services);
        configure();
    }

    bool start() {
        const auto &options = m_services.options;
        m_port = options.port;
        if (options.port == 0)
            m_port = m_server.bind_to_any_port("127.0.0.1");
        else if (!m_server.bind_to_port("127.0.0.1", options.port))
            return false;
        if (m_port <= 0)
            return false;
        m_thread = std::thread([this] { m_server.listen_after_bind(); });
        // The socket listens since it was bound, but only a running server can be stopped.
        while (!m_server.is_running())
            std::this_thread::yield();
        return true;
    }

    void stop() {
        m_services.stop.stop();
        if (!m_thread.joinable())
            return;
        m_server.stop();
        m_thread.join();
    }

    int port() const { return m_port; }

private:
    void configure();
    void serve(const httplib::Request &request, httplib::Response &response, std::string body);
    SandboxAnswer answerTo(SandboxRequest &request);
    SandboxAnswer faultyAnswer(const SandboxRequest &request, const FaultRule &fault);
    void requireLocal(const httplib::Request &request) const;
    void readAndServe(const httplib::Request &request, httplib::Response &response,
                      const httplib::ContentReader &reader);
    void send(SandboxAnswer answer, const std::optional<FaultRule> &fault, httplib::Response &response);
    void sendSpoiled(std::string body, const SandboxAnswer &answer, const FaultRule &fault,
                     httplib::Response &response);

    SandboxServices &m_services;
    SandboxRouter m_router;
    httplib::Server m_server;
    std::thread m_thread;
    int m_port = 0;
};

void SandboxServer::Endpoint::configure() {
    const auto &options = m_services.options;
    m_server.new_task_queue = [size = options.poolSize] {
        return new httplib::ThreadPool(static_cast<std::size_t>(size));
    };
    m_server.set_tcp_nodelay(true);
    // The library's own choice lets a second sandbox share the port, and half of the requests.
    m_server.set_socket_options([](socket_t socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    // One request a connection: an idle connection never holds a thread, and a body that was refused unread cannot be
    // taken for the next request.
    m_server.set_keep_alive_max_count(1);
    m_server.set_keep_alive_timeout(options.connectionGraceSeconds);
    m_server.set_payload_max_length(largestBody);
    m_server.set_pre_routing_handler([this](const httplib::Request &request, httplib::Response &response) {
        const bool hasBody = request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
        // The library would wait for a body that never comes, and would match the path by a recursive expression.
        if (request.method == "POST" && hasBody && request.target.size() <= longestTarget &&
            !request.is_multipart_form_data() && !request.has_header("Range"))
            return httplib::Server::HandlerResponse::Unhandled;
        serve(request, response, {});
        return httplib::Server::HandlerResponse::Handled;
    });
    m_server.Post(R"([\s\S]*)",
                  [this](const httplib::Request &request, httplib::Response &response,
                         const httplib::ContentReader &reader) { readAndServe(request, response, reader); });
    m_server.set_error_handler([this](const httplib::Request &, httplib::Response &response) {
        if (!response.body.empty() || response.content_provider_)
            return;
        const bool tooLarge = response.status == 413;
        send(SandboxAnswer::failure({response.status, tooLarge ? "too_large" : "bad_request",
                                     tooLarge ? "请求太大，沙盒最多接受 16 MB。" : "请求不对。"}),
             std::nullopt, response);
    });
    m_server.set_exception_handler([this](const httplib::Request &, httplib::Response &response, std::exception_ptr) {
        send(SandboxAnswer::failure({500, "internal", "沙盒内部出错。"}), std::nullopt, response);
    });
}

void SandboxServer::Endpoint::readAndServe(const httplib::Request &request, httplib::Response &response,
                                           const httplib::ContentReader &reader) {
    std::string body;
    std::size_t received = 0;
    const bool complete = reader([&](const char *data, std::size_t size) {
        received += size;
        if (received <= largestBody)
            body.append(data, size);
        else
            body = {};
        return received <= largestDrain;
    });
    if (received > largestBody || response.status == 413)
        send(SandboxAnswer::failure({413, "too_large", "请求太大，沙盒最多接受 16 MB。"}), std::nullopt, response);
    else if (!complete)
        send(SandboxAnswer::failure({400, "bad_request", "请求没有收完整。"}), std::nullopt, response);
    else
        serve(request, response, std::move(body));
}

void SandboxServer::Endpoint::requireLocal(const httplib::Request &request) const {
    const auto port = std::to_string(m_port);
    const auto host = request.get_header_value("Host");
    if (host != "127.0.0.1:" + port && host != "localhost:" + port)
        throw SandboxFailure(403, "foreign_host", "沙盒只在本机使用。");
    if (!request.has_header("Origin"))
        return;
    const auto origin = request.get_header_value("Origin");
    if (origin != "http://127.0.0.1:" + port && origin != "http://localhost:" + port)
        throw SandboxFailure(403, "foreign_origin", "沙盒不接受来自其他网页的请求。");
}

void SandboxServer::Endpoint::serve(const httplib::Request &http, httplib::Response &response, std::string body) {
    SandboxRequest request;
    try {
        requireLocal(http);
        if (http.target.size() > longestTarget)
            throw SandboxFailure(414, "target_too_long", "请求地址太长。");
        if (http.is_multipart_form_data() || http.has_header("Range"))
            throw SandboxFailure(400, "bad_request", "沙盒不接受这种请求。");
        request.method = http.method;
        request.path = http.path;
        if (const auto mark = http.target.find('?'); mark != std::string::npos)
            request.query = parseFields(std::string_view(http.target).substr(mark + 1), false);
        if (std::any_of(request.query.begin(), request.query.end(),
                        [](const auto &field) { return !isUtf8(field.second); }))
            throw SandboxFailure(400, "bad_request", "请求地址里有无效的文字。");
        request.token = tokenOf(http);
        request.body = std::move(body);
        auto answer = answerTo(request);
        send(std::move(answer), request.fault, response);
    } catch (const SandboxFailure &failure) {
        send(SandboxAnswer::failure(failure), request.fault, response);
    } catch (const SQLite::Exception &error) {
        const bool busy = error.getErrorCode() == SQLITE_BUSY;
        // The message names tables at most, never what is in them.
        std::fprintf(stderr, "lumenpair-sandbox: %s\n", error.what());
        send(SandboxAnswer::failure({busy ? 503 : 500, busy ? "busy" : "internal", "沙盒的状态文件暂时用不了。"}),
             request.fault, response);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "lumenpair-sandbox: %s\n", error.what());
        send(SandboxAnswer::failure({500, "internal", "沙盒内部出错。"}), request.fault, response);
    }
}

SandboxAnswer SandboxServer::Endpoint::answerTo(SandboxRequest &request) {
    // The switch itself must stay within reach whatever is switched on.
    if (request.path != "/sandbox/faults")
        request.fault = m_services.faults.take(request.path);
    return request.fault ? faultyAnswer(request, *request.fault) : m_router.answer(request);
}

SandboxAnswer SandboxServer::Endpoint::faultyAnswer(const SandboxRequest &request, const FaultRule &fault) {
    if (fault.delayMs > 0 && m_services.stop.wait(std::chrono::milliseconds(fault.delayMs)))
        throw SandboxFailure(503, "stopping", "服务正在关闭。");
    if (!fault.replacesAnswer())
        return m_router.answer(request);
    if (fault.charge)
        chargeReplacedTurn(m_services, request);
    SandboxAnswer answer;
    answer.status = fault.status.value_or(200);
    answer.contentType = fault.contentType;
    if (fault.body)
        answer.body = *fault.body;
    else if (!fault.empty)
        answer.body = R"({"error":"fault_injected","reason":"沙盒按要求出错。"})";
    return answer;
}

void SandboxServer::Endpoint::send(SandboxAnswer answer, const std::optional<FaultRule> &fault,
                                   httplib::Response &response) {
    response.status = answer.status;
    response.set_header("Cache-Control", "no-store");
    for (const auto &[name, value] : answer.headers)
        response.set_header(name, value);
    if (answer.stream) {
        response.set_chunked_content_provider(answer.contentType,
                                              [stream = answer.stream](std::size_t, httplib::DataSink &sink) {
                                                  // Nothing catches what leaves this function: the library calls it
                                                  // outside of its own handlers.
                                                  try {
                                                      const auto step = stream->advance(sinkFor(sink));
                                                      if (step == RelayStream::Step::finished)
                                                          sink.done();
                                                      return step != RelayStream::Step::broken;
                                                  } catch (const std::exception &error) {
                                                      std::fprintf(stderr, "lumenpair-sandbox: %s\n", error.what());
                                                      return false;
                                                  }
                                              });
        return;
    }
    if (fault && fault->garbageAfterEvents && !fault->replacesAnswer())
        answer.body = std::string("\xFF\xFE{\"text\":[[\xE4\xBD", 13);
    const bool spoiled = fault && (fault->cutAfterEvents || fault->stallAfterEvents || fault->chunkBytes > 0);
    if (spoiled && !answer.body.empty())
        sendSpoiled(std::move(answer.body), answer, *fault, response);
    else
        response.set_content(answer.body, answer.contentType);
}

void SandboxServer::Endpoint::sendSpoiled(std::string body, const SandboxAnswer &answer, const FaultRule &fault,
                                          httplib::Response &response) {
    // A body in one piece has no events to count: it breaks off in its middle.
    const auto provider = [this, body = std::move(body), fault](std::size_t, httplib::DataSink &sink) {
        const auto bytes = sinkFor(sink);
        const bool half = fault.cutAfterEvents || fault.stallAfterEvents;
        const auto part = std::string_view(body).substr(0, half ? body.size() / 2 : body.size());
        const bool written = bytes.writeInPieces(part, static_cast<std::size_t>(fault.chunkBytes));
        if (fault.stallAfterEvents && !fault.cutAfterEvents)
            while (bytes.writable() && !m_services.stop.wait(std::chrono::milliseconds(50)))
                ;
        if (half || !written)
            return false;
        sink.done();
        return true;
    };
    response.set_chunked_content_provider(answer.contentType, provider);
}

SandboxServer::SandboxServer(SandboxOptions options)
    : m_services(std::make_unique<SandboxServices>(std::move(options)))
    , m_endpoint(std::make_unique<Endpoint>(*m_services)) {}

SandboxServer::~SandboxServer() {
    stop();
}

bool SandboxServer::start() {
    return m_endpoint->start();
}

int SandboxServer::port() const {
    return m_endpoint->port();
}

std::string SandboxServer::url() const {
    return "http://127.0.0.1:" + std::to_string(port());
}

void SandboxServer::stop() {
    m_endpoint->stop();
}

} // namespace lmp::sandbox
