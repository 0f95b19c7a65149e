#pragma once

#include "app/Application.h"
#include "core/LoginModel.h"
#include "terminal/CommandLine.h"
#include "terminal/ExitCode.h"
#include "terminal/StandardInput.h"

namespace lmp {

/// `lumenpair sign-in`: by phone, e-mail or Google.
///
/// Owned by the terminal application, UI thread; application, console and input outlive it. Secrets come from the
/// prompt or, in a pipe, one a line; none is ever an argument.
class SignInCommand {
public:
    SignInCommand(Application &application, Console &console, StandardInput &input, CommandLine line);

    QCoro::Task<ExitCode> run();

private:
    LoginModel::Mode mode() const;
    QCoro::Task<std::optional<ExitCode>> askCode();
    QCoro::Task<std::optional<ExitCode>> askPassword();
    QCoro::Task<ExitCode> finish();
    ExitCode complain(const QString &text, ExitCode code);

    Application &m_application;
    Console &m_console;
    StandardInput &m_input;
    CommandLine m_line;
    std::unique_ptr<LoginModel> m_model;
};

} // namespace lmp
