#include "dev/DevPermissionPolicy.h"

#include "core/Json.h"
#include "dev/DevPatterns.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

struct Fill {
    QString text = {};
    qsizetype count = 0;
};
BOOST_DESCRIBE_STRUCT(Fill, (), (text, count))

/// One way to reach something forbidden, or something harmless that looks like it.
struct PermissionCase {
    QString id = {};
    QString tool = {};
    std::optional<QString> command = {};
    std::optional<QString> path = {};
    std::optional<Fill> fill = {};
    QString expected = {};
    QString why = {};
    std::optional<bool> reached = {}; ///< said of those that are not
    std::optional<bool> forced = {};  ///< harmless, but an expression that is fixed finds it as it stands

    QString filled(QString text, const QString &repository) const {
        text.replace(u"<repository>"_s, repository);
        return fill ? text.replace(u"<fill>"_s, fill->text.repeated(fill->count)) : text;
    }
};
BOOST_DESCRIBE_STRUCT(PermissionCase, (), (id, tool, command, path, fill, expected, why, reached, forced))

QList<PermissionCase> permissionCases() {
    QFile file(QStringLiteral(LMP_TEST_DATA "/dev_permission_cases.json"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return Json::decode<QList<PermissionCase>>(file.readAll()).value_or(QList<PermissionCase>());
}

} // namespace

/// Holds every trick that the fixed patterns can see through to what would be safe, in the mode that allows most, and
/// prints those that they cannot; when one of these comes within reach, its row changes. A harmless call is stopped
/// only where an expression finds it as it stands, which no reading of it can mend.
TEST(DevPermissionCasesTest, TricksAreSeenThroughAndHarmlessCallsPass) {
    const QTemporaryDir folder;
    const QString repository = QDir(folder.path()).canonicalPath();
    ASSERT_TRUE(QFile::link(repository + u"/.env"_s, repository + u"/notes.txt"_s));
    const auto rows = permissionCases();
    ASSERT_FALSE(rows.isEmpty());
    QStringList missed, stopped;
    for (const PermissionCase &row : rows) {
        DevPermissionPolicy::Call call{.tool = row.tool};
        if (row.command)
            call.command = row.filled(*row.command, repository);
        if (row.path)
            call.paths.append(row.filled(*row.path, repository));
        const auto outcome = DevPermissionPolicy().evaluate(call, DevMode::full, repository).outcome;
        const bool allowed = outcome == DevPermissionPolicy::Verdict::Outcome::allow;
        const bool harmless = row.expected == "allow"_L1, forced = row.forced.value_or(false);
        EXPECT_EQ(allowed == harmless, row.reached.value_or(true) && !forced) << row.id.toStdString();
        if (allowed && !harmless)
            missed.append(row.id);
        if (allowed || !harmless)
            continue;
        const auto text = call.command.value_or(QString()).toStdString();
        EXPECT_TRUE(forced && (DevPatterns::isSensitive(text) || DevPatterns::isRisky(text))) << row.id.toStdString();
        stopped.append(row.id + u" ("_s + row.why + u')');
    }
    std::printf("permission cases: %d of %d as they should be; out of reach: %s\nharmless, and stopped: %s\n",
                int(rows.size() - missed.size() - stopped.size()), int(rows.size()), qPrintable(missed.join(u' ')),
                qPrintable(stopped.join(u", "_s)));
}

} // namespace lmp
