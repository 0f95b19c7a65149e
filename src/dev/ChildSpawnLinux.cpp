#include "dev/ChildSpawn.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace lmp::detail {

namespace {

/// Well below what an unprivileged user may have in all pipes together, with a dozen children.
constexpr int pipeSize = 512 * 1024;

} // namespace

bool openPipe(int (&ends)[2]) {
    return ::pipe2(ends, O_CLOEXEC) == 0;
}

bool openSocketPair(int (&ends)[2]) {
    return ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0;
}

void widenPipe(int end) {
    ::fcntl(end, F_SETPIPE_SZ, pipeSize);
}

int inheritOnly(int last, posix_spawnattr_t &, posix_spawn_file_actions_t &actions) {
    return ::posix_spawn_file_actions_addclosefrom_np(&actions, last + 1);
}

} // namespace lmp::detail
