// The program around the sandbox: arguments, signals, the one line that says where it listens.
#include "SandboxServer.h"

#include <boost/json.hpp>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <thread>
#include <unistd.h>

namespace {

using lmp::sandbox::SandboxOptions;
using lmp::sandbox::SandboxServer;

/// Standard input belongs to the program that started us and closes with it, however it dies.
void endWithParent() {
    std::thread([] {
        char buffer[256];
        ssize_t count = 0;
        do
            count = ::read(STDIN_FILENO, buffer, sizeof buffer);
        while (count > 0 || (count < 0 && errno == EINTR));
        ::kill(::getpid(), SIGTERM);
    }).detach();
}

/// A request that will not end may not keep the program alive.
void endSoon() {
    std::thread([] {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        std::_Exit(0);
    }).detach();
}

int run(const SandboxOptions &options) {
    // Blocked before any thread is made, so that only the wait below ever sees them.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    SandboxServer server(options);
    if (!server.start()) {
        std::fprintf(stderr, "沙盒无法监听端口 %d，可能已被占用。\n", options.port);
        return 1;
    }
    std::printf("%s\n", boost::json::serialize(boost::json::object{{"url", server.url()}}).c_str());
    std::fflush(stdout);
    if (options.exitWithParent)
        endWithParent();
    int signal = 0;
    sigwait(&signals, &signal);
    endSoon();
    server.stop();
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    const auto parsed = SandboxOptions::parse({argv + 1, argv + argc});
    if (const auto *problem = std::get_if<std::string>(&parsed)) {
        std::fprintf(stderr, "%s\n用 --help 查看用法。\n", problem->c_str());
        return 2;
    }
    if (const auto *request = std::get_if<SandboxOptions::Request>(&parsed)) {
        if (*request == SandboxOptions::Request::version)
            std::printf("lumenpair-sandbox %s\n", LMP_VERSION);
        else
            std::fputs(SandboxOptions::helpText().c_str(), stdout);
        return 0;
    }
    try {
        return run(std::get<SandboxOptions>(parsed));
    } catch (const std::exception &error) {
        std::fprintf(stderr, "沙盒的状态文件打不开：%s\n", error.what());
        return 1;
    }
}
