#pragma once

class QThreadPool;

namespace lmp {

/// Threads of this library for what mostly waits: a program that has to start, the login shell, the last children at
/// the end. The program's common pool has a thread for each core and is for work; two slow starts would stop all of it.
///
/// Made with the first use and never destroyed: the program's end does not wait for what they wait for. Any thread.
class DevPool {
public:
    static QThreadPool &waiting();
    /// For the end alone, which stands in no queue.
    static QThreadPool &ending();
};

} // namespace lmp
