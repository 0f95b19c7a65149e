#include "support/FailingCalls.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lmp {

namespace {

using Call = FailingCalls::Call;

struct State {
    bool armed = false;
    FailingCalls::Plan plan;
    std::array<int, std::size_t(Call::Count)> counts{};
    unsigned widest = 0;
};

thread_local State state;

/// Counts a call. @return whether it is to fail
bool fails(Call call) {
    if (!state.armed)
        return false;
    const int number = state.counts[std::size_t(call)]++;
    const auto &plan = state.plan;
    return plan.call == call && (plan.onward ? number >= plan.number : number == plan.number);
}

int fail() {
    errno = state.plan.code;
    return -1;
}

} // namespace

void FailingCalls::arm(const Plan &plan) {
    state = {.armed = true, .plan = plan, .counts = {}, .widest = 0};
}

void FailingCalls::disarm() {
    state.armed = false;
}

int FailingCalls::count(Call call) {
    return state.counts[std::size_t(call)];
}

unsigned FailingCalls::widest() {
    return state.widest;
}

} // namespace lmp

using lmp::fail;
using lmp::fails;
using lmp::state;
using Call = lmp::FailingCalls::Call;

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

int __real_mkdir(const char *path, mode_t mode);
int __real_open(const char *path, int flags, ...);
int __real_flock(int fd, int operation);
int __real_fstat(int fd, struct stat *status);
ssize_t __real_read(int fd, void *bytes, size_t size);
ssize_t __real_write(int fd, const void *bytes, size_t size);
int __real_fsync(int fd);
int __real_close(int fd);
int __real_rename(const char *from, const char *to);
int __real_renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags);
int __real_unlink(const char *path);

int __wrap_mkdir(const char *path, mode_t mode) {
    state.widest |= mode & 077;
    return fails(Call::Mkdir) ? fail() : __real_mkdir(path, mode);
}

int __wrap_open(const char *path, int flags, ...) {
    mode_t mode = 0;
    if (flags & O_CREAT) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
        state.widest |= mode & 077;
    }
    return fails(Call::Open) ? fail() : __real_open(path, flags, mode);
}

int __wrap_flock(int fd, int operation) {
    return fails(Call::Flock) ? fail() : __real_flock(fd, operation);
}

int __wrap_fstat(int fd, struct stat *status) {
    return fails(Call::Fstat) ? fail() : __real_fstat(fd, status);
}

ssize_t __wrap_read(int fd, void *bytes, size_t size) {
    return fails(Call::Read) ? fail() : __real_read(fd, bytes, size);
}

ssize_t __wrap_write(int fd, const void *bytes, size_t size) {
    if (!fails(Call::Write))
        return __real_write(fd, bytes, size);
    return state.plan.code ? fail() : __real_write(fd, bytes, size / 2);
}

int __wrap_fsync(int fd) {
    return fails(Call::Fsync) ? fail() : __real_fsync(fd);
}

int __wrap_close(int fd) {
    // Only what was written can be lost by a close, and it is closed all the same.
    const bool written = state.armed && (fcntl(fd, F_GETFL) & O_ACCMODE) == O_WRONLY;
    const bool failed = written && fails(Call::Close);
    const int result = __real_close(fd);
    return failed ? fail() : result;
}

int __wrap_rename(const char *from, const char *to) {
    return fails(Call::Rename) ? fail() : __real_rename(from, to);
}

int __wrap_renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) {
    return fails(Call::Swap) ? fail() : __real_renameat2(fromFolder, from, toFolder, to, flags);
}

int __wrap_unlink(const char *path) {
    return fails(Call::Unlink) ? fail() : __real_unlink(path);
}
}
// NOLINTEND(bugprone-reserved-identifier)
