#include "dev/ChildLoop.h"

#include "dev/ChildIO.h"
#include "dev/ChildSpawn.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace lmp {

namespace {

constexpr int retryAfter = 50; // milliseconds

} // namespace

ChildLoop &ChildLoop::shared() {
    static auto *const loop = new ChildLoop;
    return *loop;
}

ChildLoop::ChildLoop() {
    if (!detail::openPipe(m_wake))
        qFatal("no pipe for the thread of the children");
    for (const int end : m_wake)
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    std::thread([this] { run(); }).detach();
}

void ChildLoop::add(std::shared_ptr<ChildIO> child) {
    {
        const std::scoped_lock guard(m_lock);
        m_added.push_back(std::move(child));
    }
    wake();
}

void ChildLoop::wake() {
    if (!m_woken.exchange(true)) {
        [[maybe_unused]] const ssize_t written = ::write(m_wake[1], "", 1);
    }
}

void ChildLoop::run() {
    // Signals are for the program's other threads; a write to a child that is gone shall fail and not kill us.
    sigset_t all;
    sigfillset(&all);
    ::pthread_sigmask(SIG_BLOCK, &all, nullptr);
    std::vector<pollfd> interests;
    for (;;) {
        collectAdded();
        interests.assign(1, {m_wake[0], POLLIN, 0});
        for (const auto &child : m_children) {
            const auto wanted = child->interests();
            interests.insert(interests.end(), wanted.begin(), wanted.end());
        }
        wait(interests);
        if (interests.front().revents != 0)
            emptyPipe();
        for (std::size_t at = 0; at < m_children.size(); ++at)
            m_children[at]->handle(std::span(interests).subspan(1 + at * ChildIO::descriptors, ChildIO::descriptors));
        std::erase_if(m_children, [](const auto &child) { return child->isDone(); });
    }
}

/// Sleeps until one of them is ready.
void ChildLoop::wait(std::vector<pollfd> &interests) {
    // Those that are closed count against the limit of descriptors too, although they are none.
    m_polled.clear();
    std::ranges::copy_if(interests, std::back_inserter(m_polled), [](const pollfd &one) { return one.fd >= 0; });
    if (::poll(m_polled.data(), static_cast<nfds_t>(m_polled.size()), -1) < 0) {
        // Whatever is wrong will not be better for being asked for all the time.
        if (errno != EINTR)
            ::poll(nullptr, 0, retryAfter);
        return;
    }
    auto answer = m_polled.begin();
    for (pollfd &one : interests) {
        if (one.fd >= 0)
            one.revents = (answer++)->revents;
    }
}

void ChildLoop::collectAdded() {
    const std::scoped_lock guard(m_lock);
    for (auto &child : m_added)
        m_children.push_back(std::move(child));
    m_added.clear();
}

void ChildLoop::emptyPipe() {
    char bytes[64];
    while (::read(m_wake[0], bytes, sizeof bytes) > 0) {
    }
    // In this order: who wakes between the two leaves no byte, but what it is about is looked at next.
    m_woken = false;
}

} // namespace lmp
