#pragma once

#include "screens/shell/WindowApplication.h"
#include "screens/shell/WindowScene.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <chrono>
#include <functional>
#include <vector>

namespace lmp::bench {

/// Drives the window from within, and notes when each frame was done.
///
/// One for a program that measures, UI thread. What does not come about within a minute ends the program.
class WindowDriver {
public:
    using Clock = std::chrono::steady_clock;

    /// Starts the window for a service and waits until its shell has settled.
    WindowDriver(const QString &site, const QString &token);

    WindowScene &scene() { return *m_program.scene(); }
    QQuickWindow &window() { return *m_program.window(); }
    /// The first visible item of a QML type.
    QQuickItem *item(const QString &type);

    /// Runs the event loop until `reached`. @param what for the person who reads that it never was
    void until(const char *what, const std::function<bool()> &reached);
    /// Runs it for so long.
    void rest(std::chrono::milliseconds time);
    /// Runs it until no frame has been drawn for a while. @return when the last one was done
    Clock::time_point untilQuiet();

    /// When a frame was done, and the CPU time of its thread by then.
    struct Frame {
        Clock::time_point time;
        std::chrono::nanoseconds spent;
    };
    /// The frames since the last `forgetFrames`.
    const std::vector<Frame> &frames() const { return m_frames; }
    void forgetFrames() { m_frames.clear(); }

    /// CPU time of this process so far, all threads.
    static std::chrono::duration<double> processorTime();
    /// CPU time of the calling thread so far: what a frame costs, whatever else the machine does.
    static std::chrono::nanoseconds threadTime();
    /// What this process alone holds, in MB.
    static double memory();
    static double milliseconds(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

private:
    WindowApplication m_program;
    std::vector<Frame> m_frames;
};

} // namespace lmp::bench
