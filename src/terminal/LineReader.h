#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <optional>

namespace lmp {

/// Lines typed by a person, with editing and history, read while the event loop runs.
///
/// One at a time (the line editor is process-wide), UI thread. `line` comes once for each `prompt`; none is the end of
/// input. A secret is read without echo and kept out of the history.
class LineReader : public QObject {
    Q_OBJECT
public:
    explicit LineReader(QObject *parent = nullptr);
    ~LineReader() override;

    void prompt(const QString &text);
    void promptSecret(const QString &text);
    /// Takes the prompt away without an answer; what was typed so far is dropped.
    void cancel();
    bool isPrompting() const { return m_prompting; }

Q_SIGNALS:
    void line(std::optional<QString> text);

private:
    static void onLine(char *text);
    /// Gives the terminal back. @return false when nothing was being asked
    bool endPrompt();
    void deliver(std::optional<QString> text);
    void readSecret();

    QSocketNotifier m_input;
    QByteArray m_prompt; ///< the editor keeps a pointer to it
    QByteArray m_secret;
    int m_prompts = 0; ///< so far
    bool m_prompting = false;
    bool m_isSecret = false;
};

} // namespace lmp
