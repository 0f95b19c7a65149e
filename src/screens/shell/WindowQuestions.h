#pragma once

#include <QObject>
#include <QtQmlIntegration>

#include <functional>

namespace lmp {

/// What a window asks before something that was written in it, or is being written, is left behind.
///
/// One for each window, owned by its scene; UI thread.
class WindowQuestions : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window's scene")
    /// This is the window that the program's own questions are asked in.
    Q_PROPERTY(bool hostsProgram READ hostsProgram NOTIFY changed)
    /// The window would close, and something typed in it is not saved.
    Q_PROPERTY(bool closeWarning READ closeWarning NOTIFY changed)
    /// What was asked for would put away a conversation that nobody keeps, or stop a reply, and what that is.
    Q_PROPERTY(bool leaveWarning READ leaveWarning NOTIFY changed)
    Q_PROPERTY(lmp::WindowQuestions::Leaving leaving READ leaving NOTIFY changed)
    /// It came while the person was at something else, by a link.
    Q_PROPERTY(bool leaveUnasked READ leaveUnasked NOTIFY changed)
public:
    /// What leaves a conversation behind that nobody keeps: another one, closing the window, ending the program. And a
    /// link, which leaves a reply that is on its way.
    enum class Leaving { Conversation, Window, Program, Reply };
    Q_ENUM(Leaving)

    using QObject::QObject;

    bool hostsProgram() const { return m_hostsProgram; }
    void setHostsProgram(bool hosts);
    bool closeWarning() const { return m_closeWarning; }
    void setCloseWarning(bool warning);
    bool leaveWarning() const { return bool(m_leave); }
    Leaving leaving() const { return m_leaving; }
    bool leaveUnasked() const { return m_leaveUnasked; }
    /// Asks whether it may go, and does `how` if so. A question that is open gives way to this one.
    void askToLeave(Leaving leaving, std::function<void()> how, bool unasked = false);
    /// The answer to `leaveWarning`.
    Q_INVOKABLE void answerLeave(bool leave);
    /// There is nothing left to be lost: neither the question nor what waited for it.
    void withdrawLeave();
    /// The answer to `closeWarning` of somebody who does not try again.
    Q_INVOKABLE void stayOpen() { setCloseWarning(false); }

Q_SIGNALS:
    void changed();
    /// What was to be left stays.
    void stayed();

private:
    bool m_hostsProgram = false;
    bool m_closeWarning = false;
    std::function<void()> m_leave; ///< what waits for the answer to `leaveWarning`
    Leaving m_leaving = Leaving::Conversation;
    bool m_leaveUnasked = false;
};

} // namespace lmp
