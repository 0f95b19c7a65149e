#include "terminal/LineReader.h"

#include <editline/readline.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace lmp {

namespace {

LineReader *reader = nullptr;

/// Echo only; line discipline and signals stay as they are.
void setEcho(bool on) {
    termios mode = {};
    if (::tcgetattr(STDIN_FILENO, &mode) != 0)
        return;
    if (on)
        mode.c_lflag |= ECHO;
    else
        mode.c_lflag &= ~tcflag_t(ECHO);
    ::tcsetattr(STDIN_FILENO, TCSANOW, &mode);
}

} // namespace

LineReader::LineReader(QObject *parent)
    : QObject(parent)
    , m_input(STDIN_FILENO, QSocketNotifier::Read) {
    reader = this;
    // The prompt and the echo are for the person, the reply alone is for standard output.
    rl_outstream = stderr;
    m_input.setEnabled(false);
    connect(&m_input, &QSocketNotifier::activated, this, [this] {
        if (m_isSecret)
            readSecret();
        else
            rl_callback_read_char();
    });
}

LineReader::~LineReader() {
    cancel();
    reader = nullptr;
}

void LineReader::prompt(const QString &text) {
    ++m_prompts;
    m_prompt = text.toUtf8();
    m_isSecret = false;
    m_prompting = true;
    rl_callback_handler_install(m_prompt.constData(), &LineReader::onLine);
    m_input.setEnabled(true);
}

void LineReader::promptSecret(const QString &text) {
    ++m_prompts;
    std::fputs(text.toUtf8().constData(), stderr);
    m_secret.clear();
    m_isSecret = true;
    m_prompting = true;
    setEcho(false);
    m_input.setEnabled(true);
}

bool LineReader::endPrompt() {
    if (!std::exchange(m_prompting, false))
        return false;
    m_input.setEnabled(false);
    if (m_isSecret)
        setEcho(true);
    else
        rl_callback_handler_remove();
    return true;
}

void LineReader::cancel() {
    if (!endPrompt())
        return;
    m_secret.clear();
    std::fputc('\n', stderr);
}

void LineReader::onLine(char *text) {
    if (!reader)
        return;
    std::optional<QString> typed;
    if (text) {
        typed = QString::fromUtf8(text);
        if (*text)
            add_history(text);
        std::free(text);
    }
    reader->deliver(std::move(typed));
}

void LineReader::deliver(std::optional<QString> text) {
    if (!endPrompt())
        return;
    // The editor ends the line of an answer, and leaves the one of none unfinished.
    if (!text && !m_isSecret)
        std::fputc('\n', stderr);
    // Later, since the editor is still inside its own call.
    QMetaObject::invokeMethod(
        this,
        [this, text = std::move(text), prompt = m_prompts] {
            // Another question may stand there by now, and this is no answer to it.
            if (prompt == m_prompts)
                Q_EMIT line(text);
        },
        Qt::QueuedConnection);
}

void LineReader::readSecret() {
    char piece[256];
    const ssize_t n = ::read(STDIN_FILENO, piece, sizeof piece);
    if (n < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (n > 0)
        m_secret.append(piece, n);
    const auto end = m_secret.indexOf('\n');
    if (n > 0 && end < 0)
        return;
    std::fputc('\n', stderr);
    const QByteArray secret = std::exchange(m_secret, {});
    if (end < 0 && secret.isEmpty())
        deliver(std::nullopt);
    else
        deliver(QString::fromUtf8(end < 0 ? secret : secret.first(end)));
}

} // namespace lmp
