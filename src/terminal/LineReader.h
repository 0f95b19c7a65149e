#pragma once

#include "terminal/PromptLine.h"

#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <optional>

namespace lmp {

/// Lines typed by a person, with editing and history, read while the event loop runs.
///
/// One at a time (the line editor is process-wide), UI thread. `line` comes once for each `prompt`; none is the end of
/// input. A secret is read without echo and kept out of the history.
class LineReader final : public QObject, public PromptLine {
    Q_OBJECT
public:
    explicit LineReader(QObject *parent = nullptr);
    ~LineReader() override;

    /// @param typed stands there already, to be gone on with
    void prompt(const QString &text, const QString &typed = {});
    void promptSecret(const QString &text);
    /// Ends the prompt without an answer; the line stays on the screen.
    /// @return what was typed so far, unless it is a secret
    QString cancel();
    /// The same, and the line goes from the screen: somebody else needs its place.
    QString takeAway();
    /// What was typed while no prompt stood there, on one line; the next prompt does not get it.
    QString takeTypedAhead();
    bool isPrompting() const { return m_prompting; }

    QByteArray makeRoom() override;
    void comeBack() override;

Q_SIGNALS:
    void line(std::optional<QString> text);

private:
    static void onLine(char *text);
    void onReadable();
    /// Gives the terminal back. @return false when nothing was being asked
    bool endPrompt();
    /// What was entered and has not been told yet, which it will not be any more.
    QString takeUntold();
    void deliver(std::optional<QString> text);
    void readSecret();
    /// What takes the prompt and what is typed off the screen.
    QByteArray erasure() const;

    QSocketNotifier m_input;
    QByteArray m_prompt; ///< the editor keeps a pointer to it
    QByteArray m_typed;  ///< so far
    int m_cursor = 0;    ///< in m_typed
    QByteArray m_secret;
    int m_prompts = 0; ///< so far
    bool m_prompting = false;
    bool m_isSecret = false;
    bool m_isAside = false;  ///< off the screen for a while
    bool m_isUntold = false; ///< m_typed was entered; the signal is on its way
};

} // namespace lmp
