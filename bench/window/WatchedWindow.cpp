#include "WatchedWindow.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/extensions/Xdamage.h>
#include <X11/keysym.h>

#include <algorithm>
#include <array>
#include <poll.h>
#include <stdexcept>

namespace lmp::bench {

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr std::size_t textColours = 8;
/// Looking costs the machine something too.
constexpr auto betweenLooks = 4ms;

void waitFor(Display *display, std::chrono::milliseconds time) {
    pollfd descriptor = {.fd = ConnectionNumber(display), .events = POLLIN, .revents = 0};
    ::poll(&descriptor, 1, int(time.count()));
}

} // namespace

WatchedWindow::WatchedWindow()
    : m_display(XOpenDisplay(nullptr)) {
    if (!m_display)
        throw std::runtime_error("no display");
    XSetErrorHandler([](Display *, XErrorEvent *) { return 0; });
    int errors = 0;
    if (!XDamageQueryExtension(m_display, &m_damage, &errors))
        throw std::runtime_error("the display tells nothing of damage");
    m_picture = std::make_unique<SharedPicture>(m_display);
    XSelectInput(m_display, DefaultRootWindow(m_display), SubstructureNotifyMask);
    XSync(m_display, False);
}

WatchedWindow::~WatchedWindow() {
    m_picture.reset();
    XCloseDisplay(m_display);
}

bool WatchedWindow::takeEvents() {
    bool changed = false;
    while (XPending(m_display)) {
        XEvent event;
        XNextEvent(m_display, &event);
        if (event.type == m_damage + XDamageNotify)
            changed = true;
        if (event.type != MapNotify || m_window)
            continue;
        XWindowAttributes attributes;
        if (!XGetWindowAttributes(m_display, event.xmap.window, &attributes) || attributes.override_redirect ||
            attributes.width < 200 || attributes.height < 100)
            continue;
        m_window = event.xmap.window;
        m_mappedAt = Clock::now();
        XDamageCreate(m_display, m_window, XDamageReportRawRectangles);
        changed = true;
    }
    return changed;
}

WatchedWindow::Frame WatchedWindow::grab() {
    Frame frame;
    frame.time = Clock::now();
    XWindowAttributes attributes;
    if (!XGetWindowAttributes(m_display, m_window, &attributes) || attributes.map_state != IsViewable)
        return frame;
    const int width = std::min(attributes.width, DisplayWidth(m_display, 0) - attributes.x);
    const int height = std::min(attributes.height, DisplayHeight(m_display, 0) - attributes.y);
    const auto pixels = m_picture->take(m_window, width, height);
    frame.width = width;
    frame.pixels.assign(pixels.begin(), pixels.end());
    return frame;
}

void WatchedWindow::follow(Clock::time_point until, bool text) {
    bool changed = m_window != 0;
    Clock::time_point looked;
    while (Clock::now() < until) {
        changed |= takeEvents();
        if (changed && m_window && Clock::now() - looked >= betweenLooks) {
            changed = false;
            Frame frame = grab();
            looked = Clock::now();
            if (m_frames.empty() || difference(m_frames.back(), frame) > 0)
                m_frames.push_back(std::move(frame));
            if (text && showsText(m_frames.back()))
                return;
        }
        if (!XPending(m_display))
            waitFor(m_display, changed ? 2ms : 5ms);
    }
}

void WatchedWindow::drain(std::chrono::milliseconds time) {
    for (const auto until = Clock::now() + time; Clock::now() < until;) {
        takeEvents();
        waitFor(m_display, std::min(100ms, std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now())));
    }
}

void WatchedWindow::type(const std::string &text) {
    XSetInputFocus(m_display, m_window, RevertToParent, CurrentTime);
    XSync(m_display, False);
    drain(200ms);
    for (const char letter : text) {
        const KeySym symbol = letter == '\n' ? XK_Return : KeySym(static_cast<unsigned char>(letter));
        const KeyCode key = XKeysymToKeycode(m_display, symbol);
        XTestFakeKeyEvent(m_display, key, True, CurrentTime);
        XTestFakeKeyEvent(m_display, key, False, CurrentTime);
        XSync(m_display, False);
        drain(30ms);
    }
}

bool WatchedWindow::showsText(const Frame &frame) {
    std::array<std::uint32_t, textColours> seen = {};
    std::size_t count = 0;
    std::uint32_t last = 0;
    for (const std::uint32_t pixel : frame.pixels) {
        const std::uint32_t colour = pixel & 0xffffff;
        // A window is areas of one colour for the most part.
        if (count > 0 && colour == last)
            continue;
        last = colour;
        const auto end = seen.begin() + std::ptrdiff_t(count);
        if (std::find(seen.begin(), end, colour) != end)
            continue;
        seen[count++] = colour;
        if (count == textColours)
            return true;
    }
    return false;
}

std::size_t WatchedWindow::difference(const Frame &one, const Frame &other) {
    if (one.width != other.width || one.pixels.size() != other.pixels.size())
        return std::max(one.pixels.size(), other.pixels.size());
    std::size_t count = 0;
    for (std::size_t i = 0; i < one.pixels.size(); ++i)
        count += one.pixels[i] != other.pixels[i];
    return count;
}

} // namespace lmp::bench
