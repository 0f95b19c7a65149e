#include "terminal/AccountCommands.h"

#include "core/PlainLabel.h"
#include "terminal/SessionGate.h"

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// One line a field that is there; the identity first.
QString describe(const UserInfo &user) {
    QString text = u"编号：%1\n"_s.arg(user.id);
    const auto add = [&](const QString &label, const std::optional<QString> &value) {
        if (value && !value->isEmpty())
            text += label + u"："_s + PlainLabel::line(*value) + u'\n';
    };
    add(u"名字"_s, user.username);
    add(u"主页名"_s, user.handle);
    if (user.phone)
        add(u"手机号"_s, user.dialCode.value_or(QString()) + u' ' + *user.phone);
    add(u"邮箱"_s, user.email);
    return text;
}

} // namespace

QCoro::Task<ExitCode> AccountCommands::whoAmI(Application *application, Console *console) {
    if (const auto refused = co_await SessionGate::pass(application, console))
        co_return *refused;
    const auto user = application->auth().user();
    if (!user) {
        console->error(u"现在核实不了是谁；登录还在，稍后再看。"_s);
        co_return ExitCode::Unknown;
    }
    console->reply(describe(*user));
    co_return ExitCode::Submitted;
}

QCoro::Task<ExitCode> AccountCommands::signOut(Application *application, Console *console) {
    auto &auth = application->auth();
    co_await auth.settled();
    if (application->tokenIsGiven()) {
        console->error(u"这次的登录来自环境变量 LMP_TOKEN，去掉它就是退出。"_s);
        co_return ExitCode::Failed;
    }
    const bool wasSignedIn = auth.token().has_value();
    auth.signOut();
    const bool done = co_await auth.keychainSettled(10s);
    if (!done || !auth.notice().isEmpty()) {
        console->error(auth.notice().isEmpty() ? u"钥匙串没有回答，登录可能还留在里面。"_s : auth.notice());
        co_return ExitCode::Failed;
    }
    console->note(wasSignedIn ? u"已退出登录。"_s : u"本来就没有登录。"_s);
    co_return ExitCode::Submitted;
}

} // namespace lmp
