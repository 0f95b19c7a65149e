// A loopback server of event streams that is faster than any client of it. Prints its port and serves until killed.
//
//   GET /?n=200000&mode=close|chunk|flush&pace=0
//
// close: one body to the end of the connection, in writes of 64 KiB. chunk: the same writes, but each event is an HTTP
// chunk of its own. flush: each event is a chunk and a write of its own, as a service that streams tokens does it.
// pace: microseconds between events (implies flush); each event then carries "t", the monotonic clock in ns.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

namespace {

constexpr std::size_t writeSize = 64 * 1024;

struct Wish {
    long events = 200'000;
    long pace = 0; ///< us
    bool chunked = false;
    bool flushed = false;
};

long numberAfter(std::string_view text, std::string_view key, long otherwise) {
    const auto at = text.find(key);
    return at == std::string_view::npos ? otherwise : std::atol(text.data() + at + key.size());
}

Wish wishOf(const std::string &request) {
    Wish wish;
    wish.events = numberAfter(request, "n=", wish.events);
    wish.pace = numberAfter(request, "pace=", 0);
    wish.flushed = wish.pace > 0 || request.find("mode=flush") != std::string::npos;
    wish.chunked = wish.flushed || request.find("mode=chunk") != std::string::npos;
    return wish;
}

std::string readRequest(int connection) {
    std::string request;
    std::array<char, 4096> buffer;
    while (request.find("\r\n\r\n") == std::string::npos) {
        const auto n = ::read(connection, buffer.data(), buffer.size());
        if (n <= 0)
            break;
        request.append(buffer.data(), std::size_t(n));
    }
    return request;
}

bool writeAll(int connection, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto n = ::write(connection, bytes.data(), bytes.size());
        if (n <= 0)
            return false;
        bytes.remove_prefix(std::size_t(n));
    }
    return true;
}

std::string deltaEvent(long number) {
    static constexpr std::array texts = {"Hello there, this is a token", "你好，我是你的分身",
                                         "streamed words come in small", "记得昨天说过的那件事吗 ok"};
    const auto count = std::to_string(number);
    return "data: {\"seq\":" + count + ",\"delta\":\"" + texts[std::size_t(number) % texts.size()] + ' ' + count +
           "\"}\n\n";
}

std::string timedEvent(long number) {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
    return "data: {\"t\":" + std::to_string(ns) + ",\"delta\":\"token " + std::to_string(number) + "\"}\n\n";
}

void appendChunk(std::string &out, std::string_view bytes) {
    std::array<char, 20> length;
    const int n = std::snprintf(length.data(), length.size(), "%zx\r\n", bytes.size());
    out.append(length.data(), std::size_t(n)).append(bytes).append("\r\n");
}

void serve(int connection) {
    const int on = 1;
    ::setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    const Wish wish = wishOf(readRequest(connection));
    std::string out = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nCache-Control: no-store\r\n"
                      "Connection: close\r\n";
    out += wish.chunked ? "Transfer-Encoding: chunked\r\n\r\n" : "\r\n";
    bool open = writeAll(connection, out);
    out.clear();
    for (long number = 0; open && number <= wish.events; ++number) {
        const bool last = number == wish.events;
        if (wish.pace > 0 && !last)
            std::this_thread::sleep_for(std::chrono::microseconds(wish.pace));
        const auto event = last ? "data: {\"done\":true}\n\n" : wish.pace > 0 ? timedEvent(number) : deltaEvent(number);
        if (wish.chunked)
            appendChunk(out, event);
        else
            out += event;
        if (wish.flushed || out.size() > writeSize) {
            open = writeAll(connection, out);
            out.clear();
        }
    }
    if (open && writeAll(connection, out + (wish.chunked ? "0\r\n\r\n" : ""))) {
        // Closing while something is unread would reset the connection.
        ::shutdown(connection, SHUT_WR);
        readRequest(connection);
    }
    ::close(connection);
}

} // namespace

int main() {
    std::signal(SIGPIPE, SIG_IGN);
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    if (::bind(listener, generic, size) != 0 || ::listen(listener, 64) != 0 ||
        ::getsockname(listener, generic, &size) != 0) {
        std::perror("bench_event_server");
        return 1;
    }
    std::printf("%d\n", ntohs(address.sin_port));
    std::fflush(stdout);
    for (;;) {
        const int connection = ::accept(listener, nullptr, nullptr);
        if (connection >= 0)
            std::thread(serve, connection).detach();
    }
}
