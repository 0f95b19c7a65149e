#pragma once

#include <QByteArray>

namespace lmp {

/// What stands on a terminal's last line while a person types, and makes room for what is written meanwhile.
///
/// UI thread. It outlives the console's use of it.
class PromptLine {
public:
    /// Takes the line away for a while. What is typed until it comes back waits in the terminal.
    /// @return what is to be written so that it goes; none when nothing stands there
    virtual QByteArray makeRoom() = 0;
    /// Puts it back, with what had been typed. The cursor stands at the beginning of an empty line.
    virtual void comeBack() = 0;

protected:
    PromptLine() = default;
    ~PromptLine() = default;
    PromptLine(const PromptLine &) = default;
    PromptLine &operator=(const PromptLine &) = default;
};

} // namespace lmp
