#pragma once

#include "terminal/CommandLine.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace lmp {

/// The part of the command line that is about coding agents. Lives while the line is parsed.
class DevCommandLine {
public:
    /// Adds `dev` and `doctor` to the parser, which fills this object: it must not move.
    DevCommandLine(CLI::App &app, CommandLine &line, int argc, const char *const *argv);
    DevCommandLine(const DevCommandLine &) = delete;
    DevCommandLine &operator=(const DevCommandLine &) = delete;

    /// Hands over what was typed. @return what is wrong with it, if anything
    std::optional<QString> takeOver(CommandLine &line) const;

private:
    void addSession(CLI::App &app, CommandLine &line);
    void addGit(CLI::App &app, CommandLine &line);

    std::string m_engine, m_repo = ".", m_mode = "acceptEdits", m_model, m_resume, m_allow, m_view, m_worktree;
    std::vector<std::string> m_text;
};

} // namespace lmp
