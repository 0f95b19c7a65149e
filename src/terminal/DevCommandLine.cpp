#include "terminal/DevCommandLine.h"

#include <CLI/CLI.hpp>

#include <string_view>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// The word that follows the command "dev". A value of the program's own options is no command.
std::string_view wordAfterDev(CLI::App &app, int argc, const char *const *argv) {
    for (int at = 1; at + 1 < argc; ++at) {
        const std::string word = argv[at];
        const auto *option = word.starts_with('-') ? app.get_option_no_throw(word) : nullptr;
        if (option && option->get_items_expected_max() > 0)
            ++at;
        else if (!word.starts_with('-'))
            return word == "dev" ? argv[at + 1] : std::string_view();
    }
    return {};
}

template <class Enum>
std::optional<Enum> named(const std::string &name) {
    std::optional<Enum> found;
    boost::mp11::mp_for_each<boost::describe::describe_enumerators<Enum>>([&](auto D) {
        if (name == D.name)
            found = D.value;
    });
    return found;
}

std::optional<QString> unlessEmpty(const std::string &text) {
    return text.empty() ? std::nullopt : std::optional(QString::fromStdString(text));
}

} // namespace

DevCommandLine::DevCommandLine(CLI::App &app, CommandLine &line, int argc, const char *const *argv) {
    auto *dev = app.add_subcommand("dev", "让编程代理在仓库里干活")->group("命令");
    dev->footer("lumenpair dev git status|diff|log [--repo DIR] 看仓库；lumenpair dev worktree NAME [--repo DIR] "
                "另开一个工作区。\n"
                "退出码：0 完成，1 失败，2 用法不对，3 没装或没登录，130 被打断。");
    dev->add_option("--repo", m_repo, "仓库，默认是当前文件夹")->type_name("DIR");
    // A task may well begin with one of these words; only right behind "dev" they are commands.
    const auto word = wordAfterDev(app, argc, argv);
    if (word == "git" || word == "worktree")
        addGit(*dev, line);
    else
        addSession(*dev, line);
    auto *doctor = app.add_subcommand("doctor", "看看编程代理和 git 能不能用")->group("命令");
    doctor->add_flag("--json", line.json, "输出 JSON");
    doctor->callback([&line] { line.command = CommandLine::Command::Doctor; });
}

void DevCommandLine::addSession(CLI::App &dev, CommandLine &line) {
    dev.add_option("--engine", m_engine, "代理：claude 或 codex")->type_name("NAME")->required();
    dev.add_option("--mode", m_mode, "readOnly 只看不改，acceptEdits 编辑自动（默认），full 全自动")->type_name("MODE");
    dev.add_option("--model", m_model, "用这个模型")->type_name("NAME");
    dev.add_option("--resume", m_resume, "接着这个编号的会话")->type_name("ID");
    dev.add_option("--allow", m_allow, "代理要许可时不问就放行：once 只这一次，session 本次会话都放行")
        ->type_name("HOW");
    dev.add_flag("--jsonl", line.dev.jsonl, "标准输出一行一个 JSON 事件，标准输入一行一个 JSON 命令");
    dev.add_option("TEXT", m_text, "要做的事；不给就读标准输入，在终端里就开始对话")->type_name("");
    dev.callback([&line] { line.command = CommandLine::Command::Dev; });
}

void DevCommandLine::addGit(CLI::App &dev, CommandLine &line) {
    dev.require_subcommand(1);
    auto *git = dev.add_subcommand("git", "看仓库")->group("命令");
    git->add_option("VIEW", m_view, "status、diff 或 log")->type_name("")->required();
    git->callback([&line] { line.command = CommandLine::Command::DevGit; });
    auto *worktree = dev.add_subcommand("worktree", "在仓库旁边另开一个工作区和分支")->group("命令");
    worktree->add_option("NAME", m_worktree, "名字")->type_name("")->required();
    worktree->callback([&line] { line.command = CommandLine::Command::DevWorktree; });
}

std::optional<QString> DevCommandLine::takeOver(CommandLine &line) const {
    line.dev.repo = QString::fromStdString(m_repo);
    line.dev.model = unlessEmpty(m_model);
    line.dev.resume = unlessEmpty(m_resume);
    line.gitView = QString::fromStdString(m_view);
    line.worktree = QString::fromStdString(m_worktree);
    for (const std::string &piece : m_text)
        line.dev.text << QString::fromStdString(piece);
    if (!m_view.empty() && m_view != "status" && m_view != "diff" && m_view != "log")
        return u"lumenpair dev git 后面只能是 status、diff 或 log。"_s;
    const auto mode = named<DevMode>(m_mode);
    if (!mode)
        return u"--mode 只能是 readOnly、acceptEdits 或 full。"_s;
    line.dev.mode = *mode;
    if (!m_engine.empty() && m_engine != "claude" && m_engine != "codex")
        return u"--engine 只能是 claude 或 codex。"_s;
    line.dev.engine = m_engine == "codex" ? DevEngineKind::codex : DevEngineKind::claude;
    if (!m_allow.empty() && m_allow != "once" && m_allow != "session")
        return u"--allow 只能是 once 或 session。"_s;
    if (!m_allow.empty())
        line.dev.allow =
            m_allow == "once" ? DevPermissionDecision::Kind::allowOnce : DevPermissionDecision::Kind::allowSession;
    return std::nullopt;
}

} // namespace lmp
