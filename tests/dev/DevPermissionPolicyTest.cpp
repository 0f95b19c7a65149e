#include "dev/DevPermissionPolicy.h"

#include "core/Json.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using Outcome = DevPermissionPolicy::Verdict::Outcome;
using Call = DevPermissionPolicy::Call;

Call callOf(const QString &tool, const QByteArray &input) {
    return Call::of(tool, Json::decode<boost::json::value>(input).value().as_object());
}

Call bash(const QString &command) {
    return {.tool = u"Bash"_s, .command = command};
}

Outcome judged(const Call &call, DevMode mode, const QSet<QString> &sessionAllow = {}) {
    return DevPermissionPolicy{.sessionAllow = sessionAllow}.evaluate(call, mode, u"/nowhere/repo"_s).outcome;
}

} // namespace

TEST(DevPermissionPolicyTest, ToolsByModeAndKind) {
    struct Row {
        Call call;
        Outcome readOnly, acceptEdits, full;
    };
    constexpr auto allow = Outcome::allow, ask = Outcome::ask, deny = Outcome::deny;
    for (const Row &row : {
             Row{callOf(u"TodoWrite"_s, "{}"), allow, allow, allow},
             Row{callOf(u"Read"_s, R"({"file_path":"src/a.cpp"})"), allow, allow, allow},
             Row{callOf(u"read_file"_s, R"({"path":".ssh/config"})"), ask, ask, ask},
             Row{callOf(u"WebFetch"_s, R"({"url":"x"})"), deny, allow, allow},
             Row{callOf(u"NotebookEdit"_s, R"({"notebook_path":"a.ipynb"})"), deny, allow, allow},
             Row{callOf(u"BashOutput"_s, R"({"bash_id":"1"})"), deny, ask, allow},
             Row{bash(u"git status"_s), deny, ask, allow},
             Row{bash(u"git push origin main"_s), deny, ask, ask},
             Row{bash(u"cat .env"_s), ask, ask, ask},
             // A text that cannot be judged is asked about, whatever it seems to be.
             Row{callOf(u"bash"_s, R"({"command":["git","push"]})"), deny, ask, ask},
             Row{{.tool = u"Read"_s, .paths = {u"./"_s.repeated(2046) + u"a"_s}}, ask, ask, ask},
             Row{bash(u"ls "_s + QString(17 * 1024, u'a')), ask, ask, ask},
             Row{bash(u"echo "_s + u"$("_s.repeated(100) + u"x"_s + u")"_s.repeated(100)), ask, ask, ask},
         }) {
        const auto what = (row.call.tool + u' ' + row.call.command.value_or(QString()).left(40)).toStdString();
        EXPECT_EQ(judged(row.call, DevMode::readOnly), row.readOnly) << what;
        EXPECT_EQ(judged(row.call, DevMode::acceptEdits), row.acceptEdits) << what;
        EXPECT_EQ(judged(row.call, DevMode::full), row.full) << what;
    }
    EXPECT_EQ(DevPermissionPolicy().evaluate(callOf(u"Edit"_s, "{}"), DevMode::readOnly, u"/r"_s).reason,
              u"当前是只读档位，不能改文件。用户切到「编辑自动」或「全自动」后再试。"_s);
}

TEST(DevPermissionPolicyTest, WhatIsAllowedForTheSession) {
    EXPECT_EQ(DevPermissionPolicy::ruleKeys(bash(u" npm \t test -- x"_s)),
              (QStringList{u"bash:npm"_s, u"bash:npm test"_s}));
    EXPECT_EQ(DevPermissionPolicy::ruleKeys(bash(u"make"_s)), QStringList(u"bash:make"_s));
    EXPECT_EQ(DevPermissionPolicy::ruleKeys(callOf(u"MultiEdit"_s, "{}")), QStringList(u"tool:edit_file"_s));

    EXPECT_EQ(judged(bash(u"npm ci"_s), DevMode::acceptEdits, {u"bash:npm"_s}), Outcome::allow);
    EXPECT_EQ(judged(bash(u"npm ci"_s), DevMode::acceptEdits, {u"bash:npm test"_s}), Outcome::ask);
    EXPECT_EQ(judged(bash(u"npm publish"_s), DevMode::acceptEdits, {u"bash:npm"_s}), Outcome::ask);
    EXPECT_EQ(judged(bash(u"cat .env"_s), DevMode::full, {u"bash:cat"_s}), Outcome::ask);
    EXPECT_EQ(judged(bash(u"cat <<E\nit's\nE\ngit -C . push"_s), DevMode::acceptEdits, {u"bash:cat"_s}), Outcome::ask);
}

TEST(DevPermissionPolicyTest, WhereALinkLeads) {
    const QTemporaryDir folder;
    const QString repository = QDir(folder.path()).canonicalPath();
    ASSERT_TRUE(QDir(repository).mkdir(u"home"_s));
    for (const auto &[name, target] :
         {std::pair(u"loop"_s, u"loop"_s), {u"dangling"_s, u"home/.netrc"_s}, {u"later"_s, u"home/notes"_s}})
        ASSERT_TRUE(QFile::link(repository + u'/' + target, repository + u'/' + name));
    const auto outcome = [&](const QString &path) {
        const Call call{.tool = u"Write"_s, .paths = {path}};
        return DevPermissionPolicy().evaluate(call, DevMode::full, repository).outcome;
    };
    EXPECT_EQ(outcome(u"loop"_s), Outcome::ask);
    EXPECT_EQ(outcome(u"dangling"_s), Outcome::ask);
    EXPECT_EQ(outcome(u"later"_s), Outcome::allow);
    EXPECT_EQ(outcome(u"new/folder/file"_s), Outcome::allow);
}

} // namespace lmp
