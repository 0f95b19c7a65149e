// The command people type. What it starts loads a dozen libraries; a script that only asks for the version, or a
// desktop that only wants to know what is there, shall not wait for them. So this program knows nothing but where its
// parts are, and which of them is meant.

#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string>
#include <string_view>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

namespace {

enum class Program { Terminal, Window, Gallery, NoDisplay };

/// The folder of this executable, links resolved; empty when the system does not tell.
std::string ownFolder() {
    std::array<char, PATH_MAX> path = {};
#ifdef __APPLE__
    std::array<char, PATH_MAX> named = {};
    std::uint32_t size = named.size();
    if (_NSGetExecutablePath(named.data(), &size) != 0 || !::realpath(named.data(), path.data()))
        return {};
#else
    if (::readlink("/proc/self/exe", path.data(), path.size() - 1) < 0)
        return {};
#endif
    const std::string whole = path.data();
    return whole.substr(0, whole.rfind('/'));
}

bool isSet(const char *name) {
    const char *value = std::getenv(name);
    return value && *value;
}

bool hasDisplay() {
#ifdef __APPLE__
    return true;
#else
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
#endif
}

/// Whether something was piped in to be asked. A desktop gives no input at all, and some give a pipe that nobody
/// writes to; whoever pipes a question writes it at once.
bool somethingWasPipedIn() {
    struct stat about = {};
    if (::fstat(STDIN_FILENO, &about) != 0)
        return false;
    if (S_ISREG(about.st_mode))
        return about.st_size > 0;
    if (!S_ISFIFO(about.st_mode))
        return false;
    pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
    return ::poll(&input, 1, 100) == 1 && (input.revents & POLLIN);
}

/// Schemes are of no case, and whoever hands a link over may not have tidied it.
bool isLink(const char *argument) {
    constexpr std::string_view scheme = "lumenpair:";
    return ::strncasecmp(argument, scheme.data(), scheme.size()) == 0;
}

/// What the arguments are for: the window knows --site, --sandbox, --profile and a link; --gallery draws its
/// screens to pictures; all else is the terminal's.
Program meant(int argc, char **argv) {
    bool link = false;
    for (int at = 1; at < argc; ++at) {
        const std::string_view argument = argv[at];
        if (argument == "--gallery" || argument.starts_with("--gallery="))
            return Program::Gallery;
        if (argument == "--site" || argument == "--profile")
            ++at;
        else if (isLink(argv[at]))
            link = true;
        else if (argument != "--sandbox" && !argument.starts_with("--site=") && !argument.starts_with("--profile="))
            return Program::Terminal;
    }
    if (!hasDisplay())
        return link ? Program::NoDisplay : Program::Terminal;
    return link || !somethingWasPipedIn() ? Program::Window : Program::Terminal;
}

} // namespace

int main(int argc, char **argv) {
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0)
        return std::puts("lumenpair " LMP_VERSION " (" LMP_BUILD ")") < 0 ? 1 : 0;
    const Program program = meant(argc, argv);
    if (program == Program::NoDisplay) {
        std::fputs("这个链接要在窗口里打开，可是这里没有图形显示。\n", stderr);
        return 1;
    }
    const char *name = program == Program::Window    ? "lumenpair-window"
                       : program == Program::Gallery ? "lumenpair-gallery"
                                                     : "lumenpair-terminal";
    ::execv((ownFolder() + '/' + name).c_str(), argv);
    std::fprintf(stderr, "启动不了 %s：%s\n", name, std::strerror(errno));
    return 1;
}
