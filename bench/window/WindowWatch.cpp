// bench_window_watch [--settle S] [--idle S] [--type TEXT] [--picture FILE.ppm] [--heard] COMMAND...
//
// Starts COMMAND and prints, as "name=value" words, the milliseconds from just before its exec until its first window
// is there (map_ms), shows text (text_ms) and looks as it stays but for a caret (done_ms); then, S seconds later, what
// all its processes use (pss_kb, processes, threads), and the ticks of CPU they take in the idle seconds (idle_ticks).
// --type types TEXT and Return into the window once it looks as it stays, before it settles.

#include "ProcessTree.h"
#include "WatchedWindow.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace lmp::bench {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

struct Options {
    std::chrono::seconds settle = 10s;
    std::chrono::seconds idle = 10s;
    std::string typed;
    std::string picture;
    bool heard = false;
    std::vector<std::string> command;
};

Options parse(int argc, char **argv) {
    Options options;
    int i = 1;
    const auto value = [&] {
        return i + 1 < argc ? argv[++i] : "";
    };
    for (; i < argc && std::strncmp(argv[i], "--", 2) == 0; ++i) {
        const std::string name = argv[i];
        if (name == "--settle")
            options.settle = std::chrono::seconds(std::atoi(value()));
        else if (name == "--idle")
            options.idle = std::chrono::seconds(std::atoi(value()));
        else if (name == "--type")
            options.typed = value();
        else if (name == "--picture")
            options.picture = value();
        else if (name == "--heard")
            options.heard = true;
        else
            throw std::runtime_error("unknown: " + name);
    }
    options.command.assign(argv + i, argv + argc);
    if (options.command.empty())
        throw std::runtime_error("which command?");
    return options;
}

void save(const WatchedWindow::Frame &frame, const std::string &path) {
    std::FILE *file = std::fopen(path.c_str(), "wb");
    if (!file || frame.width == 0)
        throw std::runtime_error("no picture to write, or nowhere to: " + path);
    std::fprintf(file, "P6 %d %zu 255\n", frame.width, frame.pixels.size() / std::size_t(frame.width));
    for (const std::uint32_t pixel : frame.pixels) {
        for (const int shift : {16, 8, 0})
            std::fputc(int(pixel >> shift) & 0xff, file);
    }
    std::fclose(file);
}

/// When the window looked as it looks last, but for what a caret changes.
Clock::time_point lastLook(const std::vector<WatchedWindow::Frame> &frames) {
    const auto &last = frames.back();
    Clock::time_point since = last.time;
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame) {
        if (WatchedWindow::difference(*frame, last) > last.pixels.size() / 2000)
            break;
        since = frame->time;
    }
    return since;
}

int measure(const Options &options) {
    WatchedWindow window;
    const auto start = Clock::now();
    const ProcessTree program(options.command, options.heard);
    const auto since = [&](Clock::time_point time) {
        return std::chrono::duration<double, std::milli>(time - start).count();
    };

    window.follow(start + 30s, true);
    if (window.frames().empty() || !WatchedWindow::showsText(window.frames().back())) {
        std::fprintf(stderr, "no window with text in it within 30 s%s\n", program.alive() ? "" : "; the program ended");
        return 1;
    }
    const auto text = window.frames().back().time;
    window.follow(text + std::min<std::chrono::seconds>(options.settle, 4s), false);
    std::printf("map_ms=%.1f text_ms=%.1f done_ms=%.1f", since(window.mappedAt()), since(text),
                since(lastLook(window.frames())));
    if (!options.typed.empty())
        window.type(options.typed + '\n');
    window.drain(std::chrono::ceil<std::chrono::milliseconds>(text + options.settle - Clock::now()));

    const auto settled = program.use();
    window.drain(options.idle);
    const auto idled = program.use();
    std::printf(" pss_kb=%ld processes=%d threads=%d idle_ticks=%ld\n", settled.pssKiB, settled.processes,
                settled.threads, idled.ticks - settled.ticks);
    if (!options.picture.empty()) {
        window.follow(Clock::now() + 50ms, false);
        save(window.frames().back(), options.picture);
    }
    return 0;
}

} // namespace
} // namespace lmp::bench

int main(int argc, char **argv) {
    try {
        return lmp::bench::measure(lmp::bench::parse(argc, argv));
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
