#include "terminal/StandardInput.h"

#include <QStringDecoder>

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace lmp {

StandardInput::StandardInput(Console &console)
    : m_console(console)
    , m_pipe(STDIN_FILENO, QSocketNotifier::Read) {
    m_pipe.setEnabled(false);
    connect(&m_pipe, &QSocketNotifier::activated, this, &StandardInput::onReadable);
    if (!console.inputIsTerminal())
        return;
    m_editor = std::make_unique<LineReader>();
    m_console.setPrompt(m_editor.get());
    connect(m_editor.get(), &LineReader::line, this, &StandardInput::answer);
}

StandardInput::~StandardInput() {
    m_console.setPrompt(nullptr);
}

QCoro::Task<std::optional<QString>> StandardInput::line(QString prompt, QString typed) {
    if (m_waiting)
        cancel();
    if (m_editor) {
        m_console.endLine();
        m_editor->prompt(prompt, typed);
    }
    return wait();
}

QCoro::Task<std::optional<QString>> StandardInput::secret(QString prompt) {
    if (m_waiting)
        cancel();
    if (m_editor) {
        m_console.endLine();
        m_editor->promptSecret(prompt);
    }
    return wait();
}

QCoro::Task<std::optional<QString>> StandardInput::everything() {
    m_whole = true;
    return wait();
}

QCoro::Task<std::optional<QString>> StandardInput::wait() {
    const Answer coming;
    m_waiting = coming;
    m_trouble = Trouble::None;
    if (!m_editor && !takeLine())
        m_pipe.setEnabled(true);
    co_return co_await coming;
}

QString StandardInput::cancel() {
    if (m_editor && m_editor->isPrompting())
        m_console.endLine();
    const QString typed = m_editor ? m_editor->cancel() : QString();
    answer(std::nullopt);
    return typed;
}

QString StandardInput::takeAway() {
    const QString typed = m_editor ? m_editor->takeAway() : QString();
    answer(std::nullopt);
    return typed;
}

QString StandardInput::takeTypedAhead() {
    return m_editor ? m_editor->takeTypedAhead() : QString();
}

void StandardInput::onReadable() {
    char piece[65536];
    const ssize_t n = ::read(STDIN_FILENO, piece, sizeof piece);
    if (n < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (n > 0)
        m_buffer.append(piece, n);
    else
        m_ended = true;
    takeLine();
}

bool StandardInput::takeLine() {
    if (m_whole)
        return takeAll();
    const auto end = m_buffer.indexOf('\n');
    const bool isTooLong = end < 0 ? m_buffer.size() > maxBytes : end > maxBytes;
    if (isTooLong || m_skipping) {
        m_buffer.remove(0, end < 0 ? m_buffer.size() : end + 1);
        m_skipping = end < 0 && !m_ended;
        if (m_skipping)
            return false;
        m_trouble = Trouble::TooLong;
        answer(std::nullopt);
        return true;
    }
    if (end < 0 && !m_ended)
        return false;
    if (end < 0 && m_buffer.isEmpty()) {
        answer(std::nullopt);
        return true;
    }
    QByteArray line = end < 0 ? std::exchange(m_buffer, {}) : m_buffer.first(end);
    if (end >= 0)
        m_buffer.remove(0, end + 1);
    if (line.endsWith('\r'))
        line.chop(1);
    answerWith(std::move(line));
    return true;
}

bool StandardInput::takeAll() {
    if (m_buffer.size() > maxBytes)
        answer(std::nullopt);
    else if (m_ended)
        answerWith(std::exchange(m_buffer, {}));
    return m_ended || m_buffer.size() > maxBytes;
}

void StandardInput::answerWith(QByteArray bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    m_trouble = decoder.hasError() ? Trouble::NotText : Trouble::None;
    answer(std::move(text));
}

void StandardInput::answer(std::optional<QString> text) {
    m_pipe.setEnabled(false);
    if (const auto waiting = std::exchange(m_waiting, std::nullopt))
        waiting->resolve(std::move(text));
}

} // namespace lmp
