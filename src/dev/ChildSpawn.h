#pragma once

#include <QByteArray>
#include <QList>

#include <expected>

#include <spawn.h>
#include <sys/types.h>

namespace lmp {

/// A guardian that has been started, and our ends of what it was given. Closing them is its owner's duty.
struct ChildSpawn {
    pid_t guardian = -1;
    int control = -1; ///< the guardian's socket, see GuardianMessage
    int input = -1;   ///< to the child's standard input; this end and the next two do not block
    int output = -1;
    int error = -1;

    struct Order {
        QByteArray guardian;         ///< path of lumenpair-guardian
        QByteArray directory;        ///< of the child
        QList<QByteArray> arguments; ///< of the child, the first of them its path
        QList<QByteArray> environment;
    };

    /// Starts the guardian with the pipes as its standard streams, the socket as its descriptor 3 and nothing else:
    /// default signals, no other descriptor, a session of its own. The child's own start is the guardian's to report.
    /// Any thread. @return or errno
    static std::expected<ChildSpawn, int> start(const Order &order);
};

namespace detail {

// What each platform has in its own way (ChildSpawnLinux.cpp, ChildSpawnMac.cpp).

/// Both ends close on exec.
bool openPipe(int (&ends)[2]);
bool openSocketPair(int (&ends)[2]);
/// Lets more of a child's output wait in the pipe, where the platform can, so that fewer switches move it.
void widenPipe(int end);
/// Has the new program inherit the descriptors 0 to `last`, as the actions have made them, and no other.
int inheritOnly(int last, posix_spawnattr_t &attributes, posix_spawn_file_actions_t &actions);

} // namespace detail

} // namespace lmp
