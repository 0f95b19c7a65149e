#pragma once

#include <cstdint>
#include <memory>
#include <span>

struct _XDisplay;

namespace lmp::bench {

/// What a window shows, handed over in memory shared with the display: through its socket each look at a window would
/// cost some milliseconds of the two cores that the program under watch starts on.
///
/// Single thread; the display outlives it.
class SharedPicture {
public:
    /// Room for a picture of the whole display. @throws std::runtime_error where it shares no memory
    explicit SharedPicture(_XDisplay *display);
    ~SharedPicture();
    SharedPicture(const SharedPicture &) = delete;
    SharedPicture &operator=(const SharedPicture &) = delete;

    /// Takes the upper left part of a window, in pixels.
    /// @return row after row, until the next one is taken; empty where the display refuses
    std::span<const std::uint32_t> take(unsigned long window, int width, int height);

private:
    _XDisplay *m_display;
    struct Segment;
    std::unique_ptr<Segment> m_segment;
};

} // namespace lmp::bench
