#include "dev/ChildSpawn.h"

#include "dev/guardian/GuardianMessage.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace lmp {

namespace {

/// A descriptor that is closed with it.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number)
        : m_number(number) {}
    ~Descriptor() {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(Descriptor &&other) noexcept
        : m_number(other.release()) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }
    int number() const { return m_number; }
    int release() { return std::exchange(m_number, -1); }

private:
    int m_number = -1;
};

struct Ends {
    Descriptor ours;
    Descriptor theirs;
};

/// Moves a descriptor out of the way of those that the guardian is given.
bool moveUp(Descriptor &descriptor) {
    if (descriptor.number() > guardianControl)
        return true;
    descriptor = Descriptor(::fcntl(descriptor.number(), F_DUPFD_CLOEXEC, guardianControl + 1));
    return descriptor.number() >= 0;
}

/// @param reads whether the child reads from it
bool makePipe(Ends &ends, bool reads) {
    int pair[2];
    if (!detail::openPipe(pair))
        return false;
    ends = {Descriptor(pair[reads ? 1 : 0]), Descriptor(pair[reads ? 0 : 1])};
    // One of the two ends only: the flag belongs to the end, and the child's is to block.
    ::fcntl(ends.ours.number(), F_SETFL, O_NONBLOCK);
    return moveUp(ends.theirs);
}

bool makeSocket(Ends &ends) {
    int pair[2];
    if (!detail::openSocketPair(pair))
        return false;
    ends = {Descriptor(pair[0]), Descriptor(pair[1])};
    return moveUp(ends.theirs);
}

/// What posix_spawn is told, freed with it.
struct Plan {
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t actions;
    Plan() {
        ::posix_spawnattr_init(&attributes);
        ::posix_spawn_file_actions_init(&actions);
    }
    ~Plan() {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }
    Plan(const Plan &) = delete;
    Plan &operator=(const Plan &) = delete;
};

int describe(Plan &plan, const std::array<Ends, 4> &streams) {
    sigset_t all;
    sigset_t none;
    sigfillset(&all);
    sigemptyset(&none);
    ::posix_spawnattr_setsigdefault(&plan.attributes, &all);
    ::posix_spawnattr_setsigmask(&plan.attributes, &none);
    ::posix_spawnattr_setflags(&plan.attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID);
    for (std::size_t at = 0; at < streams.size(); ++at) {
        const int error =
            ::posix_spawn_file_actions_adddup2(&plan.actions, streams[at].theirs.number(), static_cast<int>(at));
        if (error != 0)
            return error;
    }
    return detail::inheritOnly(guardianControl, plan.attributes, plan.actions);
}

std::vector<char *> pointers(const QList<QByteArray> &texts, std::initializer_list<const char *> before = {}) {
    std::vector<char *> list;
    for (const char *text : before)
        list.push_back(const_cast<char *>(text));
    for (const QByteArray &text : texts)
        list.push_back(const_cast<char *>(text.constData()));
    list.push_back(nullptr);
    return list;
}

} // namespace

std::expected<ChildSpawn, int> ChildSpawn::start(const Order &order) {
    // The place in the array is the descriptor's number in the guardian.
    std::array<Ends, 4> streams;
    auto &[input, output, error, control] = streams;
    if (!makePipe(input, true) || !makePipe(output, false) || !makePipe(error, false) || !makeSocket(control))
        return std::unexpected(errno);
    detail::widenPipe(output.ours.number());

    Plan plan;
    if (const int problem = describe(plan, streams); problem != 0)
        return std::unexpected(problem);
    const auto arguments = pointers(order.arguments, {order.guardian.constData(), order.directory.constData()});
    const auto environment = pointers(order.environment);
    pid_t guardian = -1;
    const int problem = ::posix_spawn(&guardian, order.guardian.constData(), &plan.actions, &plan.attributes,
                                      arguments.data(), environment.data());
    if (problem != 0)
        return std::unexpected(problem);
    return ChildSpawn{guardian, control.ours.release(), input.ours.release(), output.ours.release(),
                      error.ours.release()};
}

} // namespace lmp
