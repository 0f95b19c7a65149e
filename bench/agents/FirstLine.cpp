// A script's own time: bench_first_line PROGRAM, from its start to the first byte that it writes.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

int main(int argc, char **argv) {
    int in[2], out[2];
    if (argc != 2 || ::pipe(in) != 0 || ::pipe(out) != 0)
        return 2;
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    for (const int end : {in[0], in[1], out[0], out[1]})
        ::posix_spawn_file_actions_addclose(&actions, end);
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    char byte = 0;
    if (::posix_spawn(&child, argv[1], &actions, nullptr, argv + 1, environ) != 0 || ::read(out[0], &byte, 1) != 1)
        return 1;
    const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    std::printf("first_ms=%.3f\n", took.count());
    return 0;
}
