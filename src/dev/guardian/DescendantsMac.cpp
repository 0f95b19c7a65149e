#include "Descendants.h"

#include <csignal>
#include <libproc.h>
#include <sys/event.h>
#include <unistd.h>

namespace lmp {

namespace {

/// @return when the process was started, in microseconds; negative when it is gone
long long birth(pid_t pid) {
    proc_bsdinfo info = {};
    if (::proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &info, sizeof info) != static_cast<int>(sizeof info))
        return -1;
    if (info.pbi_status == SZOMB)
        return -1;
    return static_cast<long long>(info.pbi_start_tvsec) * 1000000 + static_cast<long long>(info.pbi_start_tvusec);
}

} // namespace

Descendants::Descendants()
    : m_descriptor(::kqueue()) {}

void Descendants::watch(pid_t child) {
    add(child);
    refresh();
}

void Descendants::add(pid_t pid) {
    for (int at = 0; at < m_count; ++at) {
        if (m_known[at].pid == pid && m_known[at].born == birth(pid))
            return;
    }
    const long long born = birth(pid);
    if (born < 0 || m_count == maxKnown)
        return;
    m_known[m_count++] = {pid, born};
    struct kevent change;
    EV_SET(&change, static_cast<uintptr_t>(pid), EVFILT_PROC, EV_ADD | EV_CLEAR, NOTE_FORK | NOTE_EXIT, 0, nullptr);
    ::kevent(m_descriptor, &change, 1, nullptr, 0, nullptr);
}

void Descendants::refresh() {
    struct kevent event;
    const timespec now = {};
    while (::kevent(m_descriptor, nullptr, 0, &event, 1, &now) > 0) {
    }
    // Children that are added on the way are looked at in turn.
    for (int at = 0; at < m_count; ++at) {
        pid_t children[256];
        const int count = ::proc_listchildpids(m_known[at].pid, children, sizeof children);
        for (int child = 0; child < count && child < 256; ++child)
            add(children[child]);
    }
}

void Descendants::signal(int signal) {
    refresh();
    const pid_t self = ::getpid();
    for (int at = 0; at < m_count; ++at) {
        if (m_known[at].pid != self && birth(m_known[at].pid) == m_known[at].born)
            ::kill(m_known[at].pid, signal);
    }
}

bool Descendants::areLeft() {
    refresh();
    int left = 0;
    for (int at = 0; at < m_count; ++at) {
        if (birth(m_known[at].pid) == m_known[at].born)
            m_known[left++] = m_known[at];
    }
    m_count = left;
    return m_count > 0;
}

} // namespace lmp
