#include "screens/shell/WindowQuestions.h"

#include <utility>

namespace lmp {

void WindowQuestions::setHostsProgram(bool hosts) {
    if (std::exchange(m_hostsProgram, hosts) != hosts)
        Q_EMIT changed();
}

void WindowQuestions::setCloseWarning(bool warning) {
    if (std::exchange(m_closeWarning, warning) != warning)
        Q_EMIT changed();
}

void WindowQuestions::askToLeave(Leaving leaving, std::function<void()> how, bool unasked) {
    // One that is replaced goes first, and the other is read anew.
    withdrawLeave();
    m_leaving = leaving;
    m_leaveUnasked = unasked;
    m_leave = std::move(how);
    Q_EMIT changed();
}

void WindowQuestions::withdrawLeave() {
    if (std::exchange(m_leave, nullptr))
        Q_EMIT changed();
}

void WindowQuestions::answerLeave(bool leave) {
    const auto how = std::exchange(m_leave, nullptr);
    Q_EMIT changed();
    if (leave && how)
        how();
    else
        Q_EMIT stayed();
}

} // namespace lmp
