#include "platform/ProcessPrivacy.h"

#include <cstdlib>
#include <cstring>

#ifdef __linux__
#include <sys/prctl.h>
#elif defined(__APPLE__)
#include <sys/types.h>

#include <sys/ptrace.h>
#endif

namespace lmp {

void ProcessPrivacy::begin() {
#ifdef __linux__
    // It also leaves no core file, which would hold the same.
    ::prctl(PR_SET_DUMPABLE, 0);
#elif defined(__APPLE__) && defined(NDEBUG)
    // There it would end a program that is being debugged.
    ::ptrace(PT_DENY_ATTACH, 0, nullptr, 0);
#endif
}

QString ProcessPrivacy::take(const char *name) {
    char *const value = std::getenv(name);
    if (!value)
        return {};
    const QString taken = QString::fromLocal8Bit(value);
    // The system shows the place where the value was handed over, whatever has become of the variable since.
    std::memset(value, 0, std::strlen(value));
    qunsetenv(name);
    return taken;
}

} // namespace lmp
