#include "dev/claude/ClaudeTransport.h"

namespace lmp {

using namespace Qt::StringLiterals;

QStringList ClaudeTransport::arguments(const Options &options) {
    QStringList arguments = {
        u"--print"_s,   u"--input-format"_s,           u"stream-json"_s, u"--output-format"_s,   u"stream-json"_s,
        u"--verbose"_s, u"--permission-prompt-tool"_s, u"stdio"_s,       u"--permission-mode"_s, u"default"_s};
    if (options.model && !options.model->isEmpty())
        arguments << u"--model"_s << *options.model;
    // In one argument, so that no id is ever taken for an option.
    if (options.resume && !options.resume->isEmpty())
        arguments << u"--resume="_s + *options.resume;
    return arguments;
}

DevProcess::Command ClaudeTransport::command(QString program, const Options &options) {
    return {.program = std::move(program),
            .arguments = arguments(options),
            .directory = options.directory,
            .extra = {{u"CLAUDE_CODE_ENTRYPOINT"_s, u"sdk-ts"_s}}};
}

} // namespace lmp
