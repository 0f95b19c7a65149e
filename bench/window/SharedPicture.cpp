#include "SharedPicture.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>

#include <stdexcept>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace lmp::bench {

struct SharedPicture::Segment {
    XShmSegmentInfo info = {};
};

SharedPicture::SharedPicture(Display *display)
    : m_display(display)
    , m_segment(std::make_unique<Segment>()) {
    const int screen = DefaultScreen(display);
    if (!XShmQueryExtension(display) || DefaultDepth(display, screen) != 24)
        throw std::runtime_error("the display shares no memory, or not in 32 bits for a pixel");
    const std::size_t size = std::size_t(DisplayWidth(display, screen)) * std::size_t(DisplayHeight(display, screen)) *
                             sizeof(std::uint32_t);
    XShmSegmentInfo &info = m_segment->info;
    info.shmid = ::shmget(IPC_PRIVATE, size, IPC_CREAT | 0600);
    void *memory = info.shmid < 0 ? reinterpret_cast<void *>(-1) : ::shmat(info.shmid, nullptr, 0);
    if (memory == reinterpret_cast<void *>(-1))
        throw std::runtime_error("no memory to share with the display");
    info.shmaddr = static_cast<char *>(memory);
    XShmAttach(display, &info);
    XSync(display, False);
    // It goes with the last of the two that hold it, whatever ends them.
    ::shmctl(info.shmid, IPC_RMID, nullptr);
}

SharedPicture::~SharedPicture() {
    XShmDetach(m_display, &m_segment->info);
    XSync(m_display, False);
    ::shmdt(m_segment->info.shmaddr);
}

std::span<const std::uint32_t> SharedPicture::take(unsigned long window, int width, int height) {
    XShmSegmentInfo &info = m_segment->info;
    XImage *image = XShmCreateImage(m_display, DefaultVisual(m_display, DefaultScreen(m_display)), 24, ZPixmap,
                                    info.shmaddr, &info, unsigned(width), unsigned(height));
    if (!image)
        return {};
    const bool taken = image->bytes_per_line == width * int(sizeof(std::uint32_t)) &&
                       XShmGetImage(m_display, window, image, 0, 0, AllPlanes);
    // The memory is not the image's own.
    image->data = nullptr;
    XDestroyImage(image);
    if (!taken)
        return {};
    return {reinterpret_cast<const std::uint32_t *>(info.shmaddr), std::size_t(width) * std::size_t(height)};
}

} // namespace lmp::bench
