#include "support/Await.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <sys/prctl.h>
#include <unistd.h>

namespace lmp {

using namespace Qt::StringLiterals;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

/// An agent that looks for what it should not know: in itself, in its guardian and in the program above that.
constexpr auto nosyAgent = R"py(#!/usr/bin/env python3
import json, os, sys
if "--version" in sys.argv: sys.exit(print("2.1.329 (Claude Code)"))
if "auth" in sys.argv: sys.exit(print('{"loggedIn":true,"authMethod":"x"}'))
json.loads(sys.stdin.readline())
def parent(pid): return int(open(f"/proc/{pid}/stat").read().rpartition(")")[2].split()[1])
me, guardian = os.getpid(), os.getppid()
program = parent(guardian)
seen = open(os.path.join(os.path.dirname(sys.argv[0]), "seen"), "w")
def look(what, read):
    try: print(what, read(), file=seen)
    except OSError as error: print(what, "refused", error.errno, file=seen)
def files(pid): return [os.readlink(f"/proc/{pid}/fd/{fd}") for fd in os.listdir(f"/proc/{pid}/fd")]
for name, pid in ("own", me), ("guardian", guardian), ("program", program):
    look(name + " environment", lambda: open(f"/proc/{pid}/environ").read())
    look(name + " files", lambda: files(pid))
    look(name + " memory", lambda: open(f"/proc/{pid}/mem", "rb").close())
    if pid != program: look(name + " arguments", lambda: open(f"/proc/{pid}/cmdline").read())
print("name", open(f"/proc/{program}/comm").read(), file=seen, flush=True)
print(json.dumps({"type": "system", "subtype": "init", "session_id": "s", "model": "m"}))
print(json.dumps({"type": "result", "subtype": "success", "is_error": False}), flush=True)
sys.stdin.read()
)py";

/// Even the administrator is then an ordinary user, who may look into programs of their own, unless they forbid it.
void dropPrivileges() {
    for (unsigned long capability = 0; capability < 64; ++capability)
        ::prctl(PR_CAPBSET_DROP, capability);
}

} // namespace

TEST(DevSecrets, TheAgentLearnsNothingOfTheProgram) {
    QTemporaryDir home;
    QFile agent(home.filePath(u"claude"_s));
    ASSERT_TRUE(agent.open(QIODevice::WriteOnly));
    agent.write(nosyAgent);
    agent.close();
    agent.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    QFile secret(home.filePath(u"canary-in-descriptor"_s));
    ASSERT_TRUE(secret.open(QIODevice::ReadWrite));
    const int leaking = ::dup(secret.handle()); // without close-on-exec

    auto env = QProcessEnvironment::systemEnvironment();
    env.insert(u"HOME"_s, home.path());
    env.insert(u"PATH"_s, home.path() + u':' + env.value(u"PATH"_s));
    env.insert(u"SHELL"_s, u"/bin/false"_s);
    env.insert(u"LMP_TOKEN"_s, u"canary-in-environment"_s);
    QProcess program;
    program.setProcessEnvironment(env);
    program.setChildProcessModifier(&dropPrivileges);
    program.start(QCoreApplication::applicationDirPath() + u"/lumenpair-terminal"_s,
                  {u"dev"_s, u"--engine"_s, u"claude"_s, u"--repo"_s, home.path(), u"canary-in-words"_s});
    program.closeWriteChannel();
    EXPECT_TRUE(eventually([&] { return program.state() == QProcess::NotRunning; }, 60'000));
    ::close(leaking);
    EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();

    QFile file(home.filePath(u"seen"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto seen = file.readAll().toStdString();
    EXPECT_THAT(seen, Not(HasSubstr("canary")));
    // It can look, and it has looked at the right one.
    EXPECT_THAT(seen, HasSubstr("own environment"));
    EXPECT_THAT(seen, HasSubstr("guardian memory None"));
    EXPECT_THAT(seen, HasSubstr("name lumenpair-termi"));
    for (const char *what : {"environment", "files", "memory"})
        EXPECT_THAT(seen, HasSubstr("program " + std::string(what) + " refused 13")) << what;
}

} // namespace lmp
