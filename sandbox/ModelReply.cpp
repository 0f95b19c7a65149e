#include "ModelReply.h"

#include <boost/json.hpp>
#include <httplib.h>

namespace lmp::sandbox {

namespace {

constexpr std::size_t longestLine = 1UL << 20;
constexpr std::size_t longestReply = 256UL * 1024;
constexpr int connectSeconds = 10;
constexpr int silenceSeconds = 60;

/// choices[0].<part>.content, or nothing.
std::string contentOf(const boost::json::value &answer, const char *part) {
    const auto *choices = answer.is_object() ? answer.as_object().if_contains("choices") : nullptr;
    if (!choices || !choices->is_array() || choices->as_array().empty() || !choices->as_array()[0].is_object())
        return {};
    const auto *inner = choices->as_array()[0].as_object().if_contains(part);
    const auto *content = inner && inner->is_object() ? inner->as_object().if_contains("content") : nullptr;
    return content && content->is_string() ? std::string(content->as_string()) : std::string();
}

bool namesFinish(const boost::json::value &answer) {
    const auto *choices = answer.as_object().if_contains("choices");
    if (!choices || !choices->is_array() || choices->as_array().empty() || !choices->as_array()[0].is_object())
        return false;
    const auto *reason = choices->as_array()[0].as_object().if_contains("finish_reason");
    return reason && !reason->is_null();
}

std::string requestBody(const ModelEndpoint &endpoint, const std::vector<ChatTurn> &messages, int maxTokens) {
    boost::json::array turns;
    for (const auto &message : messages)
        turns.push_back({{"role", message.role}, {"content", message.content}});
    boost::json::object body{{"messages", std::move(turns)}, {"max_tokens", maxTokens}, {"stream", true}};
    body["model"] = endpoint.model.empty() ? "default" : endpoint.model;
    return boost::json::serialize(body);
}

} // namespace

ModelEndpoint ModelEndpoint::fromUrl(const std::string &url, std::string key, std::string model) {
    ModelEndpoint endpoint{url, {}, std::move(key), std::move(model)};
    const auto scheme = url.find("://");
    const auto slash = url.find('/', scheme == std::string::npos ? 0 : scheme + 3);
    if (slash != std::string::npos) {
        endpoint.site = url.substr(0, slash);
        endpoint.path = url.substr(slash);
    }
    while (endpoint.path.ends_with('/'))
        endpoint.path.pop_back();
    if (endpoint.path.ends_with("/chat/completions"))
        return endpoint;
    const auto last =
        endpoint.path.substr(endpoint.path.rfind('/') == std::string::npos ? 0 : endpoint.path.rfind('/'));
    const bool versioned = last.size() > 2 && last[1] == 'v' && last[2] >= '0' && last[2] <= '9';
    endpoint.path += versioned ? "/chat/completions" : "/v1/chat/completions";
    return endpoint;
}

ModelReply::ModelReply(const ModelEndpoint &endpoint, const std::vector<ChatTurn> &messages, int maxTokens)
    : m_client(std::make_unique<httplib::Client>(endpoint.site)) {
    m_client->set_connection_timeout(connectSeconds);
    m_client->set_read_timeout(silenceSeconds);
    m_client->set_url_encode(false);
    m_thread = std::thread([this, path = endpoint.path, key = endpoint.key,
                            body = requestBody(endpoint, messages, maxTokens)] { run(path, key, body); });
}

ModelReply::~ModelReply() {
    {
        std::unique_lock lock(m_mutex);
        m_abandoned = true;
        // The client can only be stopped once it has its socket, so one call could come too early.
        while (!m_done) {
            lock.unlock();
            m_client->stop();
            lock.lock();
            m_condition.wait_for(lock, std::chrono::milliseconds(20), [this] { return m_done; });
        }
    }
    m_thread.join();
}

void ModelReply::run(const std::string &path, const std::string &key, const std::string &body) {
    try {
        httplib::Request request;
        request.method = "POST";
        request.path = path;
        request.body = body;
        request.headers = {{"Content-Type", "application/json"}, {"Accept", "text/event-stream"}};
        if (!key.empty())
            request.headers.emplace("Authorization", "Bearer " + key);
        bool accepted = false;
        request.response_handler = [&](const httplib::Response &response) {
            accepted = response.status == 200;
            m_isStream = response.get_header_value("Content-Type").starts_with("text/event-stream");
            return accepted;
        };
        request.content_receiver = [&](const char *data, std::size_t size, std::uint64_t, std::uint64_t) {
            return takeBytes({data, size});
        };
        const bool abandoned = [this] {
            const std::lock_guard lock(m_mutex);
            return m_abandoned;
        }();
        const auto result = abandoned ? httplib::Result(nullptr, httplib::Error::Canceled) : m_client->send(request);
        if (accepted && result && !m_isStream)
            takeWhole();
        end(accepted && m_sawEnd ? Piece::Kind::finished : Piece::Kind::failed);
    } catch (...) {
        end(Piece::Kind::failed);
    }
    // Under the lock: the destructor may go on as soon as it sees the mark.
    const std::lock_guard lock(m_mutex);
    m_done = true;
    m_condition.notify_all();
}

bool ModelReply::takeBytes(std::string_view bytes) {
    m_buffer += bytes;
    if (!m_isStream)
        return m_buffer.size() <= longestLine;
    std::size_t start = 0;
    for (auto end = m_buffer.find('\n'); end != std::string::npos; end = m_buffer.find('\n', start)) {
        takeLine(std::string_view(m_buffer).substr(start, end - start));
        start = end + 1;
    }
    m_buffer.erase(0, start);
    const std::lock_guard lock(m_mutex);
    return !m_abandoned && !m_sawEnd && m_end == Piece::Kind::waiting && m_buffer.size() <= longestLine &&
           m_total <= longestReply;
}

void ModelReply::takeLine(std::string_view line) {
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    if (!line.starts_with("data:"))
        return;
    line.remove_prefix(5);
    if (line.starts_with(' '))
        line.remove_prefix(1);
    if (line == "[DONE]") {
        m_sawEnd = true;
        return;
    }
    boost::json::error_code error;
    const auto answer = boost::json::parse(boost::json::string_view(line.data(), line.size()), error);
    const auto *problem = !error && answer.is_object() ? answer.as_object().if_contains("error") : nullptr;
    // Some endpoints name the key in every chunk, with nothing in it.
    if (error || !answer.is_object() || (problem && !problem->is_null())) {
        end(Piece::Kind::failed);
        return;
    }
    push(contentOf(answer, "delta"));
    m_sawEnd = m_sawEnd || namesFinish(answer);
}

void ModelReply::takeWhole() {
    // Some endpoints answer in one piece although a stream was asked for.
    boost::json::error_code error;
    const auto answer = boost::json::parse(m_buffer, error);
    if (error || !answer.is_object())
        return;
    push(contentOf(answer, "message"));
    m_sawEnd = true;
}

void ModelReply::push(std::string text) {
    if (text.empty())
        return;
    const std::lock_guard lock(m_mutex);
    m_total += text.size();
    m_queue.push_back(std::move(text));
    m_condition.notify_all();
}

void ModelReply::end(Piece::Kind how) {
    const std::lock_guard lock(m_mutex);
    if (m_end == Piece::Kind::waiting)
        m_end = how;
    m_condition.notify_all();
}

ReplySource::Piece ModelReply::next(std::chrono::milliseconds patience) {
    std::unique_lock lock(m_mutex);
    m_condition.wait_for(lock, patience, [this] { return !m_queue.empty() || m_end != Piece::Kind::waiting; });
    if (m_queue.empty())
        return {m_end, {}};
    Piece piece{Piece::Kind::text, std::move(m_queue.front())};
    m_queue.pop_front();
    return piece;
}

bool ModelReply::settle(std::chrono::milliseconds patience) {
    std::unique_lock lock(m_mutex);
    return m_condition.wait_for(lock, patience, [this] { return m_total > 0 || m_end != Piece::Kind::waiting; });
}

bool ModelReply::isVoid() const {
    const std::lock_guard lock(m_mutex);
    return m_total == 0;
}

} // namespace lmp::sandbox
