#include "dev/DevPermissionPolicy.h"

#include "core/JsonText.h"
#include "dev/DevCommandForms.h"
#include "dev/DevPathForms.h"
#include "dev/DevPatterns.h"
#include "dev/DevTools.h"

#include <algorithm>

namespace lmp {

namespace {

using Verdict = DevPermissionPolicy::Verdict;
using Outcome = Verdict::Outcome;

/// A command as it was given and in the forms a shell might see.
class CommandText {
public:
    /// @param elsewhere where it runs, when that is not `directory`
    CommandText(const QString &command, const std::optional<QString> &elsewhere, const QString &directory)
        : m_text(command.toStdString()) {
        if (m_text.size() <= DevPatterns::maxText)
            m_forms = DevCommandForms::of(m_text, elsewhere.value_or(directory).toStdString(), elsewhere.has_value());
    }

    /// Too long or too entangled to be looked at counts as a hit.
    template <class Test>
    bool hits(Test test) const {
        return !m_forms || test(m_text) || test(*m_forms);
    }

private:
    std::string m_text;
    std::optional<std::string> m_forms;
};

bool isSensitivePath(const QString &path, const QString &directory) {
    const auto given = path.toStdString(), folder = directory.toStdString();
    if (given.size() > DevPatterns::maxText || DevPatterns::isSensitive(given) ||
        DevPatterns::isSensitive(DevPathForms::clean(given, folder)))
        return true;
    // Where it leads may be unknown to us alone: a long path of dots can be opened from its folder.
    const auto resolved = DevPathForms::resolved(given, folder);
    return !resolved || DevPatterns::isSensitive(*resolved);
}

/// Whether a call of the tool is nothing without a command, so that one which cannot be read is hidden.
bool runsCommands(const QString &tool) {
    return tool.compare(QLatin1String("bash"), Qt::CaseInsensitive) == 0;
}

/// Where a call runs, as a clean path, unless that is the session's own folder.
std::optional<QString> elsewhere(const DevPermissionPolicy::Call &call, const QString &directory) {
    if (!call.directory)
        return std::nullopt;
    const auto place = DevPathForms::clean(call.directory->toStdString(), directory.toStdString());
    const bool isHere = place == DevPathForms::clean(directory.toStdString(), {});
    return isHere ? std::nullopt : std::optional(QString::fromStdString(place));
}

QString readOnlyReason(DevTools::Kind kind) {
    if (kind == DevTools::Kind::bash)
        return QStringLiteral("当前是只读档位，不能跑命令。用户切到「编辑自动」或「全自动」后再试。");
    return QStringLiteral("当前是只读档位，不能改文件。用户切到「编辑自动」或「全自动」后再试。");
}

/// @param key looked up in the input
std::optional<QString> text(const boost::json::object &input, std::string_view key) {
    const auto *value = input.if_contains(key);
    const auto *string = value ? value->if_string() : nullptr;
    return string ? std::optional(detail::jsonText(*string)) : std::nullopt;
}

} // namespace

DevPermissionPolicy::Call DevPermissionPolicy::Call::of(QString tool, const boost::json::object &input) {
    Call call{.tool = std::move(tool), .command = text(input, "command")};
    for (const std::string_view key : {"path", "file_path", "notebook_path"}) {
        if (auto path = text(input, key))
            call.paths.append(*std::move(path));
    }
    return call;
}

Verdict DevPermissionPolicy::evaluate(const Call &call, DevMode mode, const QString &directory) const {
    const auto ask = Verdict{.outcome = Outcome::ask}, allow = Verdict{.outcome = Outcome::allow};
    const auto place = elsewhere(call, directory);
    if (place && isSensitivePath(*place, directory))
        return ask;
    std::optional<CommandText> command;
    if (call.command)
        command.emplace(*call.command, place, directory);
    // Before anything else, and no matter what was allowed before: these places are always asked about.
    if (command && command->hits(DevPatterns::isSensitive))
        return ask;
    if (std::ranges::any_of(call.paths, [&](const QString &path) { return isSensitivePath(path, directory); }))
        return ask;

    const auto kind = DevTools::kindOf(call.tool);
    if (DevTools::isRead(kind))
        return allow;
    if (mode == DevMode::readOnly)
        return {.outcome = Outcome::deny, .reason = readOnlyReason(kind)};
    if (kind != DevTools::Kind::bash)
        return allow;
    if (command ? command->hits(DevPatterns::isRisky) : runsCommands(call.tool))
        return ask;
    if (mode == DevMode::full)
        return allow;
    const auto keys = ruleKeys(call);
    return std::ranges::any_of(keys, [&](const QString &key) { return sessionAllow.contains(key); }) ? allow : ask;
}

QStringList DevPermissionPolicy::ruleKeys(const Call &call) {
    const auto kind = DevTools::kindOf(call.tool);
    if (kind != DevTools::Kind::bash)
        return {QStringLiteral("tool:") + DevTools::name(kind)};
    const auto words = call.command.value_or(QString()).simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QStringList keys;
    if (!words.isEmpty())
        keys.append(QStringLiteral("bash:") + words.first());
    if (words.size() > 1)
        keys.append(keys.first() + QLatin1Char(' ') + words[1]);
    return keys;
}

void DevPermissionPolicy::allowForSession(const Call &call) {
    for (const auto &key : ruleKeys(call))
        sessionAllow.insert(key);
}

} // namespace lmp
