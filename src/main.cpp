// The command people type. What it starts loads a dozen libraries; a script that only asks for the version, or a
// desktop that only wants to know what is there, shall not wait for them. So this program knows nothing but where its
// parts are.

#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

namespace {

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

} // namespace

int main(int argc, char **argv) {
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0)
        return std::puts("lumenpair " LMP_VERSION " (" LMP_BUILD ")") < 0 ? 1 : 0;
    const std::string program = ownFolder() + "/lumenpair-terminal";
    ::execv(program.c_str(), argv);
    std::fprintf(stderr, "启动不了 lumenpair-terminal：%s\n", std::strerror(errno));
    return 1;
}
