#include "dev/ChildSpawn.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace lmp::detail {

namespace {

bool closeOnExec(const int (&ends)[2]) {
    return ::fcntl(ends[0], F_SETFD, FD_CLOEXEC) == 0 && ::fcntl(ends[1], F_SETFD, FD_CLOEXEC) == 0;
}

} // namespace

bool openPipe(int (&ends)[2]) {
    return ::pipe(ends) == 0 && closeOnExec(ends);
}

bool openSocketPair(int (&ends)[2]) {
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
        return false;
    const int yes = 1;
    ::setsockopt(ends[0], SOL_SOCKET, SO_NOSIGPIPE, &yes, sizeof yes);
    return closeOnExec(ends);
}

void widenPipe(int) {}

int inheritOnly(int, posix_spawnattr_t &attributes, posix_spawn_file_actions_t &) {
    // Whatever the actions did not make is closed, however it was opened.
    short flags = 0;
    ::posix_spawnattr_getflags(&attributes, &flags);
    return ::posix_spawnattr_setflags(&attributes, static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT));
}

} // namespace lmp::detail
