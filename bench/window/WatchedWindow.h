#pragma once

#include "SharedPicture.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct _XDisplay;

namespace lmp::bench {

/// The first window of some size that appears on the X display, and the pictures it shows.
///
/// One for a program that measures; single thread. What the server refuses (a window that is gone) is taken for an
/// empty picture.
class WatchedWindow {
public:
    struct Frame {
        std::chrono::steady_clock::time_point time;
        int width = 0;
        std::vector<std::uint32_t> pixels; ///< row after row
    };

    /// @throws std::runtime_error without a display, or where it tells nothing of damage
    WatchedWindow();
    ~WatchedWindow();
    WatchedWindow(const WatchedWindow &) = delete;
    WatchedWindow &operator=(const WatchedWindow &) = delete;

    /// Follows the display until `until`, and keeps a frame each time the window has changed.
    /// @param text stop at the first frame with text in it
    void follow(std::chrono::steady_clock::time_point until, bool text);
    /// Lets the display talk for so long, looking at nothing.
    void drain(std::chrono::milliseconds time);
    /// Gives the window the keyboard and types letters and blanks; '\n' is Return.
    void type(const std::string &text);

    bool mapped() const { return m_window != 0; }
    std::chrono::steady_clock::time_point mappedAt() const { return m_mappedAt; }
    const std::vector<Frame> &frames() const { return m_frames; }
    /// Whether so many colours show that there must be letters, whose edges are shaded.
    static bool showsText(const Frame &frame);
    /// How many pixels of two frames differ; all where their sizes do.
    static std::size_t difference(const Frame &one, const Frame &other);

private:
    /// Takes what the display has to tell. Returns whether the window has changed.
    bool takeEvents();
    Frame grab();

    _XDisplay *m_display;
    int m_damage = 0; ///< number of the first event of the damage extension
    std::unique_ptr<SharedPicture> m_picture;
    unsigned long m_window = 0;
    std::chrono::steady_clock::time_point m_mappedAt;
    std::vector<Frame> m_frames;
};

} // namespace lmp::bench
