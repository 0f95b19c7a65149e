#include "terminal/LineReader.h"

#include <editline/readline.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <sys/ioctl.h>
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

/// For the history. One key is an answer, which is not given again.
void note(const char *text) {
    if (text[0] != '\0' && text[1] != '\0')
        add_history(text);
}

int screenColumns() {
    winsize size = {};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

/// How many lines below its first one a text ends on the screen, as the editor lays it out.
int linesBelow(const QString &text) {
    const int columns = screenColumns();
    int row = 0, column = 0;
    const auto codes = text.toUcs4();
    for (const char32_t code : codes) {
        const int width = std::max(0, ::wcwidth(wchar_t(code)));
        if (column + width > columns) {
            ++row;
            column = 0;
        }
        column += width;
    }
    return row + (column == columns ? 1 : 0);
}

} // namespace

LineReader::LineReader(QObject *parent)
    : QObject(parent)
    , m_input(STDIN_FILENO, QSocketNotifier::Read) {
    reader = this;
    // The prompt and the echo are for the person, the reply alone is for standard output.
    rl_outstream = stderr;
    m_input.setEnabled(false);
    connect(&m_input, &QSocketNotifier::activated, this, &LineReader::onReadable);
}

LineReader::~LineReader() {
    cancel();
    reader = nullptr;
}

void LineReader::prompt(const QString &text, const QString &typed) {
    ++m_prompts;
    m_prompt = text.toUtf8();
    m_typed.clear();
    m_cursor = 0;
    m_isSecret = m_isUntold = false;
    m_prompting = true;
    rl_callback_handler_install(m_prompt.constData(), &LineReader::onLine);
    if (!typed.isEmpty()) {
        // The editor draws it all again, and does not know that the prompt stands there already.
        std::fputs(erasure().constData(), stderr);
        m_typed = typed.toUtf8();
        m_cursor = int(m_typed.size());
        rl_insert_text(m_typed.constData());
        rl_forced_update_display();
    }
    m_input.setEnabled(true);
}

void LineReader::promptSecret(const QString &text) {
    ++m_prompts;
    m_prompt = text.toUtf8();
    std::fputs(m_prompt.constData(), stderr);
    m_typed.clear();
    m_cursor = 0;
    m_secret.clear();
    m_isSecret = true;
    m_isUntold = false;
    m_prompting = true;
    setEcho(false);
    m_input.setEnabled(true);
}

void LineReader::onReadable() {
    if (m_isSecret)
        return readSecret();
    rl_callback_read_char();
    // Between a prompt and its first key the editor still shows the line before.
    if (!m_prompting)
        return;
    m_typed = QByteArray(rl_line_buffer, rl_end);
    m_cursor = rl_point;
}

QByteArray LineReader::erasure() const {
    const auto term = qgetenv("TERM");
    if (term.isEmpty() || term == "dumb")
        return "\n";
    const int above = linesBelow(QString::fromUtf8(m_prompt + m_typed.first(m_cursor)));
    return '\r' + (above > 0 ? "\x1b[" + QByteArray::number(above) + 'A' : QByteArray()) + "\x1b[J";
}

QByteArray LineReader::makeRoom() {
    if (!m_prompting || std::exchange(m_isAside, true))
        return {};
    m_input.setEnabled(false);
    return erasure();
}

void LineReader::comeBack() {
    if (!m_prompting || !std::exchange(m_isAside, false))
        return;
    if (m_isSecret)
        std::fputs(m_prompt.constData(), stderr);
    else
        rl_forced_update_display();
    m_input.setEnabled(true);
}

bool LineReader::endPrompt() {
    if (!std::exchange(m_prompting, false))
        return false;
    m_input.setEnabled(false);
    m_isAside = false;
    if (m_isSecret)
        setEcho(true);
    else
        rl_callback_handler_remove();
    return true;
}

QString LineReader::cancel() {
    if (!m_prompting)
        return takeUntold();
    // What was typed is seen once more, and can be called back.
    if (!m_typed.isEmpty()) {
        comeBack();
        note(m_typed.constData());
    }
    if (!m_isAside)
        std::fputc('\n', stderr);
    endPrompt();
    m_secret.clear();
    return QString::fromUtf8(m_typed);
}

QString LineReader::takeAway() {
    std::fputs(makeRoom().constData(), stderr);
    if (!endPrompt())
        return takeUntold();
    m_secret.clear();
    return QString::fromUtf8(m_typed);
}

QString LineReader::takeUntold() {
    return std::exchange(m_isUntold, false) ? QString::fromUtf8(m_typed) : QString();
}

QString LineReader::takeTypedAhead() {
    termios mode = {};
    if (m_prompting || ::tcgetattr(STDIN_FILENO, &mode) != 0)
        return {};
    // A line that is not complete can be read only while the terminal hands out single keys.
    termios keys = mode;
    keys.c_lflag &= ~tcflag_t(ICANON);
    keys.c_cc[VMIN] = keys.c_cc[VTIME] = 0;
    ::tcsetattr(STDIN_FILENO, TCSANOW, &keys);
    QByteArray typed;
    char piece[256];
    for (ssize_t n = 0; (n = ::read(STDIN_FILENO, piece, sizeof piece)) > 0;)
        typed.append(piece, n);
    ::tcsetattr(STDIN_FILENO, TCSANOW, &mode);
    QString text = QString::fromUtf8(typed);
    text.replace(u'\n', u' ').removeIf([](QChar c) { return c < u' ' || c == u'\x7f'; });
    return text;
}

void LineReader::onLine(char *text) {
    if (!reader)
        return;
    std::optional<QString> typed;
    if (text) {
        typed = QString::fromUtf8(text);
        note(text);
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
    m_typed = text && !m_isSecret ? text->toUtf8() : QByteArray();
    m_isUntold = true;
    // Later, since the editor is still inside its own call.
    QMetaObject::invokeMethod(
        this,
        [this, text = std::move(text), prompt = m_prompts] {
            // Another question may stand there by now, and this is no answer to it.
            if (prompt == m_prompts && std::exchange(m_isUntold, false))
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
