#include "dev/EventText.h"

namespace lmp {

using namespace Qt::StringLiterals;
using namespace dev_event;

namespace {

struct Words {
    QString operator()(const SessionStarted &e) const {
        return u"session "_s + e.engineSessionId.value_or(u"-"_s).left(8) + u' ' + e.model.value_or(u"-"_s);
    }
    QString operator()(const AssistantDelta &e) const { return u"delta "_s + e.text; }
    QString operator()(const AssistantText &e) const { return u"says "_s + e.text.left(40); }
    QString operator()(const ToolCall &e) const { return u"calls "_s + e.name + u' ' + e.summary; }
    QString operator()(const ToolResult &e) const {
        return (e.isError ? u"error "_s : u"result "_s) + e.output.left(30);
    }
    QString operator()(const FileChanged &e) const {
        const auto kind = JsonCodec<DevFileChangeKind>::name(e.kind);
        return QString::fromLatin1(kind.data(), qsizetype(kind.size())) + u' ' + e.path;
    }
    QString operator()(const CommandOutput &e) const { return u"output "_s + e.chunk; }
    QString operator()(const DevPermissionRequest &e) const { return u"asks "_s + e.tool + u' ' + e.summary; }
    QString operator()(const TurnCompleted &e) const {
        return u"done %1+%2"_s.arg(e.usage.inputTokens.value_or(-1)).arg(e.usage.outputTokens.value_or(-1));
    }
    QString operator()(const Failed &e) const { return u"failed "_s + e.reason.left(40); }
    QString operator()(const Notice &e) const { return u"notice "_s + e.text; }
    QString operator()(const Interrupted &) const { return u"interrupted"_s; }
};

} // namespace

QString eventText(const DevEvent &event) {
    return std::visit(Words(), event);
}

} // namespace lmp
