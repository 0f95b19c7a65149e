#pragma once

#include <QProcess>
#include <QString>

namespace lmp {

/// A terminal that a test types on and reads, for programs that behave otherwise on one.
///
/// UI thread. The program becomes the leader of its session, so that Ctrl-C and its like reach it as signals.
class PseudoTerminal {
public:
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal &) = delete;
    PseudoTerminal &operator=(const PseudoTerminal &) = delete;

    bool isOpen() const { return m_near >= 0 && m_far >= 0; }
    /// Gives this terminal to a program that is about to start, as its standard streams.
    void attach(QProcess &program);
    void type(const QByteArray &keys);
    /// Waits until `text` is shown after what was waited for before.
    bool shows(const QString &text);
    /// Everything shown so far.
    QByteArray shown();
    bool echoes() const;

private:
    int m_near = -1; ///< ours
    int m_far = -1;  ///< the program's, held open so that nothing is lost when it ends
    QByteArray m_name;
    QByteArray m_shown;
    qsizetype m_seen = 0;
};

} // namespace lmp
