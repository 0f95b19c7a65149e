// lumenpair-guardian DIRECTORY PROGRAM [ARGUMENT...]: started by lumenpair for each coding agent and each command it
// runs.

#include "Guardian.h"

#include <cstdio>
#include <sys/socket.h>

int main(int argc, char **argv) {
    int type = 0;
    socklen_t size = sizeof type;
    if (argc < 3 || ::getsockopt(lmp::guardianControl, SOL_SOCKET, SO_TYPE, &type, &size) != 0) {
        std::fputs("这是 lumenpair 的一部分，由它自己启动。\n", stderr);
        return 2;
    }
    lmp::Guardian guardian;
    if (!guardian.start(argv[1], argv + 2))
        return 1;
    guardian.guard();
    return 0;
}
