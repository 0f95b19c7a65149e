#pragma once

#include <QThreadPool>

namespace lmp {

/// A pool of one thread, which does things in the order in which they were given.
///
/// A program that rests holds no such thread: it ends when it has had nothing to do for a while, and a new one begins
/// with the next work. Any thread may give it work; its owner waits in its end for what is under way.
class OneThread : public QThreadPool {
public:
    OneThread() {
        setMaxThreadCount(1);
        setExpiryTimeout(idle);
    }

private:
    static constexpr int idle = 2000; ///< ms
};

} // namespace lmp
