#include "terminal/GuestCommand.h"

#include "core/GuestTrial.h"

namespace lmp {

using namespace Qt::StringLiterals;

QCoro::Task<ExitCode> GuestCommand::run(Application *application, Console *console, StandardInput *input) {
    GuestTrial trial(application->auth().service());
    co_await trial.open();
    if (!trial.isOpen()) {
        console->error(trial.message());
        co_return ExitCode::Failed;
    }
    if (!trial.note().isEmpty())
        console->note(trial.note());
    while (!trial.isExhausted()) {
        const auto text = co_await input->line(u"你（还剩 %1 轮）："_s.arg(trial.roundsLeft()));
        if (!text)
            co_return ExitCode::Submitted;
        if (text->trimmed().isEmpty())
            continue;
        const auto before = trial.turns().size();
        co_await trial.send(*text);
        if (trial.turns().size() == before) {
            console->error(trial.message());
            // A round without an answer leaves the line with whoever typed it; a pipe has nobody to try again.
            if (!console->inputIsTerminal())
                co_return ExitCode::Failed;
            continue;
        }
        console->reply(trial.turns().back().reply + u'\n');
    }
    console->note(u"试聊的轮数用完了。注册之后可以接着聊：lumenpair sign-in --phone 号码"_s);
    co_return ExitCode::Submitted;
}

} // namespace lmp
