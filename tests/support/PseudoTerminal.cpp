#include "support/PseudoTerminal.h"

#include "support/Await.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace lmp {

PseudoTerminal::PseudoTerminal()
    : m_near(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (m_near < 0 || ::grantpt(m_near) != 0 || ::unlockpt(m_near) != 0)
        return;
    ::fcntl(m_near, F_SETFL, O_NONBLOCK);
    m_name = ::ptsname(m_near);
    m_far = ::open(m_name.constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
}

PseudoTerminal::~PseudoTerminal() {
    ::close(m_far);
    ::close(m_near);
}

void PseudoTerminal::attach(QProcess &program) {
    program.setChildProcessModifier([far = m_far] {
        // Only what may be called between fork and exec.
        ::setsid();
        ::ioctl(far, TIOCSCTTY, 0);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::dup2(far, stream);
    });
}

void PseudoTerminal::type(const QByteArray &keys) {
    [[maybe_unused]] const auto written = ::write(m_near, keys.constData(), size_t(keys.size()));
}

QByteArray PseudoTerminal::shown() {
    char piece[4096];
    for (ssize_t n = 0; (n = ::read(m_near, piece, sizeof piece)) > 0;)
        m_shown.append(piece, n);
    return m_shown;
}

bool PseudoTerminal::shows(const QString &text) {
    const QByteArray wanted = text.toUtf8();
    qsizetype at = -1;
    if (!eventually([&] { return (at = shown().indexOf(wanted, m_seen)) >= 0; }, 30'000))
        return false;
    m_seen = at + wanted.size();
    return true;
}

bool PseudoTerminal::echoes() const {
    termios mode = {};
    return ::tcgetattr(m_far, &mode) == 0 && (mode.c_lflag & ECHO) && (mode.c_lflag & ICANON);
}

} // namespace lmp
