#pragma once

#include "core/Later.h"

#include <QByteArray>
#include <QCoroTask>
#include <QList>
#include <QSocketNotifier>
#include <QString>
#include <QTimer>

#include <deque>
#include <memory>

namespace lmp {

class PromptLine;

/// Standard output, standard error and what is known of them.
///
/// UI thread; writes block, unless `queueOutput` was called. The reply goes to standard output, everything else to
/// standard error. A reader of standard output who is gone is no error: what follows for them is dropped.
class Console {
public:
    Console();

    bool outputIsTerminal() const { return m_outputIsTerminal; }
    bool inputIsTerminal() const { return m_inputIsTerminal; }
    /// The reader of standard output has gone, or nothing more can be written to it. A turn under way is still brought
    /// to its end and saved.
    bool outputIsClosed() const { return m_outputIsClosed; }

    /// What makes room on the terminal while something is written, and comes back when that is done: at once behind
    /// whole lines, and where a line is not at its end when it has stayed so for a while.
    void setPrompt(PromptLine *prompt) { m_prompt = prompt; }
    /// Ends the line on the terminal, if one is not at its end.
    void endLine();
    /// A key that the terminal has shown by itself stands in the line.
    void noteEcho() { m_midLine = m_midLine || (m_inputIsTerminal && m_errorIsTerminal); }

    /// From now on nothing waits inside a write: what the readers do not take is kept in order, until they do. Whoever
    /// writes much awaits `drained` in between.
    void queueOutput() { m_queues = true; }
    /// Ends when all has been written, or nothing more can be.
    QCoro::Task<> drained();
    /// The program leaves: what finds no room is dropped, with all that would follow.
    void hurry();
    /// Nothing more is said.
    void silence();

    /// Text of others (a reply, a title): as it is into a pipe, without control characters onto a terminal, where they
    /// could move the cursor, change the title or answer for the person.
    void reply(const QString &text);
    /// Bytes of our own making, a JSON line.
    void line(const QByteArray &bytes);
    /// A note on standard error, on a line of its own.
    void note(const QString &text);
    void error(const QString &text);
    /// A card that must be seen, on standard error.
    void card(const QString &text);

    /// `text` without what acts instead of being read: control characters but line feed and tab, and those that turn
    /// the direction of the line, prompts and commands of this program included.
    static QString harmless(const QString &text);

private:
    /// What is to be written where.
    struct Piece {
        int fd;
        QByteArray bytes;
    };

    void write(int fd, QByteArray bytes);
    /// What must be written first so that a prompt is not in the way.
    QByteArray room(int fd);
    void bringBack();
    void writeNow(int fd, const QByteArray &bytes);
    void flush();
    void waitForRoom(int fd);
    void stopWaiting();
    void loseOutput(int code);
    void say(const QString &text, const char *color);

    bool m_outputIsTerminal;
    bool m_inputIsTerminal;
    bool m_color;
    bool m_outputIsClosed = false;
    bool m_queues = false;
    bool m_hurries = false;
    bool m_silent = false;
    std::deque<Piece> m_queue;
    std::unique_ptr<QSocketNotifier> m_room;
    QList<Later<bool>> m_draining;
    bool m_midLine = false;   ///< a terminal shared by both streams has an unfinished line
    bool m_lineEnded = false; ///< by us, though what is said goes on
    bool m_errorIsTerminal;
    PromptLine *m_prompt = nullptr;
    QTimer m_back; ///< until the prompt is put back
};

} // namespace lmp
