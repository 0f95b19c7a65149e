// What a permission verdict costs: bench_policy_verdicts. Prints the p99 of the worst command of 16 KiB, and of an
// ordinary one the median and the p99, in microseconds.
//
// The matcher has no JIT that could be on or off.

#include "dev/DevPatterns.h"
#include "dev/DevPermissionPolicy.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>

namespace {

using lmp::DevPermissionPolicy;

struct Cost {
    double median = 0;
    double p99 = 0;
};

Cost measured(const DevPermissionPolicy::Call &call, int rounds) {
    const DevPermissionPolicy policy{.sessionAllow = {QStringLiteral("bash:npm test")}};
    std::vector<double> costs;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        policy.evaluate(call, lmp::DevMode::acceptEdits, QStringLiteral("/repository"));
        costs.push_back(double(timer.nsecsElapsed()) / 1e3);
    }
    std::ranges::sort(costs);
    return {costs[costs.size() / 2], costs[costs.size() * 99 / 100]};
}

/// `piece` again and again, up to the longest text that is looked at.
QString filled(const char *piece, const char *before = "", const char *after = "") {
    const auto head = QString::fromLatin1(before), tail = QString::fromLatin1(after), part = QString::fromLatin1(piece);
    return head + part.repeated((qsizetype(lmp::DevPatterns::maxText) - head.size() - tail.size()) / part.size()) +
           tail;
}

/// Texts on which backtracking, the reading of nested parts or the paths would be slow.
QStringList slowCommands() {
    return {filled("a"),
            filled("/"),
            filled("/a"),
            filled(" "),
            filled("a "),
            filled("curl "),
            filled("curl -d", "curl "),
            filled("wget -X", "wget"),
            filled("/.pem", "", ".pemx"),
            filled("x.pem.p12.keystore"),
            filled("rm -rrrrffff"),
            filled("rm "),
            filled("rm -r "),
            filled("git add "),
            filled("git tag -a "),
            filled("r", "rm -", "x"),
            filled("git -c a=b "),
            filled("git "),
            filled("git -C "),
            filled("$a;"),
            filled("a=$a$a;$a;", "a=xx;"),
            filled("a$b ", "x='c d';"),
            filled("${a:-"),
            filled("'a b' "),
            filled("'a b\n' x "),
            filled("echo 'it is' \"$x\"\n"),
            filled("[git,"),
            filled("a ", "cd quite/a/long/way/from/home;"),
            filled("git remote  ", "git\t\t"),
            filled("$("),
            filled("$(a)"),
            filled("$(a) ", "$($($($($($($($($($($($("),
            filled("`"),
            filled("'"),
            filled("\""),
            filled("\\\n"),
            filled(";"),
            filled("a;"),
            filled("cd a;"),
            filled("cd ..;"),
            filled("./a "),
            filled("../", "cat "),
            filled("<a"),
            filled("eval "),
            filled("sh -c "),
            filled("a b ", "sh -c 'sh -c \"", "\"'"),
            filled("git -C . status;"),
            filled("chmod  chown "),
            filled(".claude/.credentialsx", "/"),
            filled("\x01\x7f-_")};
}

DevPermissionPolicy::Call bash(const QString &command) {
    return {.tool = QStringLiteral("Bash"), .command = command};
}

} // namespace

int main() {
    measured(bash(QStringLiteral("ls")), 100);
    Cost worst;
    int at = 0, worstAt = 0;
    for (const auto &command : slowCommands()) {
        const auto cost = measured(bash(command), 200);
        if (cost.p99 > worst.p99) {
            worst = cost;
            worstAt = at;
        }
        ++at;
    }
    Cost path = measured({.tool = QStringLiteral("Read"), .paths = {filled("../")}}, 200);
    Cost deep = measured({.tool = QStringLiteral("Read"), .paths = {QStringLiteral("/a/..").repeated(800)}}, 200);
    if (deep.p99 > path.p99)
        path = deep;
    Cost usual;
    for (const auto *command :
         {"npm test -- --runInBand", "git -C src/app status && git diff --stat | head -20",
          "cd build && cmake --build . -j4 2>&1 | tail -n 40", "rg -n \"foo bar\" src tests/*.cpp"}) {
        const auto cost = measured(bash(QString::fromLatin1(command)), 5000);
        usual = {std::max(usual.median, cost.median), std::max(usual.p99, cost.p99)};
    }
    std::printf("worst_p99_us=%.1f worst_at=%d path_p99_us=%.1f usual_us=%.2f usual_p99_us=%.2f\n", worst.p99, worstAt,
                path.p99, usual.median, usual.p99);
    return 0;
}
