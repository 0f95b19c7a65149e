#include "support/PseudoTerminal.h"
#include "terminal/TerminalFixture.h"

#include <sys/stat.h>

namespace lmp {

/// `lumenpair memory` as people type it, against a sandbox, with a home of its own.
class MemoryCommandsTest : public TerminalFixture {
protected:
    void start(QProcess &program, const QStringList &arguments) const {
        TerminalFixture::start(program, QStringList{u"memory"_s} + arguments, m_token);
    }
    Run run(const QStringList &arguments, const QByteArray &input = {}) {
        return TerminalFixture::run(QStringList{u"memory"_s} + arguments, input);
    }
    /// The ids at the beginnings of the lines.
    static QStringList ids(const Run &run) {
        QStringList ids;
        for (const QString &line : run.out.split(u'\n', Qt::SkipEmptyParts))
            ids << line.section(u'\t', 0, 0);
        return ids;
    }
    /// A memory of `text`, found and confirmed. @return its id
    QString remember(const QByteArray &text) {
        const auto found = ids(run({u"import"_s, u"-"_s}, text));
        EXPECT_FALSE(found.isEmpty());
        for (const QString &id : found)
            EXPECT_EQ(run({u"confirm"_s, id}).code, 0);
        return ids(run({u"list"_s})).value(0);
    }
};

TEST_F(MemoryCommandsTest, TheLifeOfAMemory) {
    EXPECT_TRUE(run({u"list"_s}).err.contains(u"还没有记住关于你的事"_s));
    const auto scan = run({u"import"_s, u"-"_s}, "我住在杭州\n");
    EXPECT_EQ(scan.code, 0) << scan.err.toStdString();
    EXPECT_TRUE(scan.err.contains(u"还什么都没写进去"_s));
    EXPECT_EQ(ids(run({u"candidates"_s})), ids(scan));
    EXPECT_EQ(run({u"confirm"_s, ids(scan).value(0)}).code, 0);
    EXPECT_EQ(run({u"confirm"_s, ids(scan).value(0)}).code, 1) << "it is taken already";
    const auto moved = ids(run({u"import"_s, u"-"_s}, "我住在成都\n"));
    EXPECT_TRUE(run({u"confirm"_s, moved.value(0)}).err.contains(u"已收下，并取代了更早的「住在杭州…」"_s));
    EXPECT_TRUE(run({u"search"_s, u"杭"_s}).out.contains(u"这条记忆已被取代"_s));
    EXPECT_TRUE(run({u"search"_s, u"重庆"_s}).out.isEmpty());

    const QString id = ids(run({u"search"_s, u"成都"_s})).value(0);
    EXPECT_EQ(run({u"correct"_s, id, u"住在成都东边"_s}).code, 0);
    EXPECT_TRUE(run({u"history"_s, id}).out.contains(u"住在成都 → 住在成都东边"_s));
    EXPECT_EQ(run({u"revert"_s, id}).out, u"住在成都\n"_s);
    EXPECT_EQ(run({u"freeze"_s, id}).code, 0);
    EXPECT_TRUE(run({u"list"_s}).out.contains(u"已冻结"_s));
    EXPECT_EQ(run({u"unfreeze"_s, id}).code, 0);

    const auto forgotten = run({u"forget"_s, id});
    EXPECT_TRUE(run({u"search"_s, u"成都"_s}).out.isEmpty());
    EXPECT_EQ(run({u"restore"_s}, "{}").code, 2);
    EXPECT_EQ(run({u"restore"_s}, forgotten.out.toUtf8()).code, 0);
    EXPECT_EQ(ids(run({u"search"_s, u"成都"_s})), QStringList{id});
    // One record a line, and no line without one.
    const QString out = run({u"list"_s, u"--jsonl"_s}).out;
    ASSERT_TRUE(out.endsWith(u'\n'));
    QStringList contents;
    for (const QString &line : out.chopped(1).split(u'\n')) {
        const auto record = Json::decode<boost::json::value>(line.toUtf8());
        ASSERT_TRUE(record) << out.toStdString();
        contents << QString::fromUtf8(record->at("content").as_string().c_str());
    }
    EXPECT_EQ(contents, (QStringList{u"住在成都"_s, u"住在杭州"_s}));
}

TEST_F(MemoryCommandsTest, WhatFailedOrIsNotKnownIsSaid) {
    struct Case {
        QByteArray fault;
        QStringList arguments;
        int code;
        QString says;
    };
    const QString id = remember("我喜欢爬山\n");
    for (const auto &[rule, arguments, code, says] : std::initializer_list<Case>{
             {R"({"route":"/app/memory","status":500})", {u"list"_s}, 1, u"记忆读取失败"_s},
             {R"({"route":"/app/memory","garbage":true})", {u"list"_s}, 1, u"记忆读取失败"_s},
             {R"({"route":"/app/memory/correct","status":409})",
              {u"correct"_s, id, u"喜欢徒步"_s},
              1,
              u"这条记忆已在别处更新，输入已保留。当前记忆：喜欢爬山。请重新打开后修改。"_s},
             {R"({"route":"/app/memory/correct","status":500})",
              {u"correct"_s, id, u"喜欢徒步"_s},
              4,
              u"未确认保存结果。请先检查最新记忆，不会重复提交。"_s},
             {R"({"route":"/app/memory/correct","garbage":true})",
              {u"correct"_s, id, u"喜欢徒步"_s},
              4,
              u"未确认保存结果"_s},
             {R"({"route":"/app/memory/revert","status":500})",
              {u"revert"_s, id},
              4,
              u"未确认改回结果，请先检查最新记忆。"_s},
             {R"({"route":"/app/memory/history","status":503})", {u"history"_s, id}, 1, u"没读到版本历史："_s},
             {R"({"route":"/app/memory/extract","status":500})", {u"import"_s, u"-"_s}, 1, u"扫描失败，稍后再试"_s},
             {R"({"route":"/app/memory/freeze","garbage":true})", {u"unfreeze"_s, id}, 4, u"没有收到确认"_s},
             {R"({"route":"/app/memory/freeze","status":500})", {u"freeze"_s, id}, 4, u"没有收到确认"_s},
             {R"({"route":"/app/memory/forget","status":401})", {u"forget"_s, id}, 3, {}}}) {
        SCOPED_TRACE(rule.constData());
        fault(rule);
        const auto ended = run(arguments, "我养了猫\n");
        EXPECT_EQ(ended.code, code) << ended.err.toStdString();
        EXPECT_TRUE(ended.err.contains(says)) << ended.err.toStdString();
    }
    fault({});
    // It is gone, and its answer is lost: the way back is not.
    fault(R"({"route":"/app/memory/forget","cutAfterEvents":1})");
    const auto unheard = run({u"forget"_s, id});
    EXPECT_EQ(unheard.code, 4) << unheard.err.toStdString();
    EXPECT_TRUE(run({u"list"_s}).out.isEmpty());
    EXPECT_EQ(run({u"restore"_s}, unheard.out.toUtf8()).code, 0);
    EXPECT_EQ(ids(run({u"list"_s})), QStringList{id});
    const QString pipe = m_home.filePath(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &none : {m_home.filePath(u"none"_s), pipe})
        EXPECT_EQ(run({u"import"_s, none}).code, 2);
    EXPECT_EQ(run({u"import"_s, u"-"_s}, " \n\n").code, 2);
    EXPECT_EQ(run({u"forget"_s}).code, 2);
    // An empty word is neither a wording nor something to look for.
    EXPECT_EQ(run({u"correct"_s, id, u"  "_s}).code, 2);
    EXPECT_EQ(run({u"search"_s, u""_s}).code, 2);
    EXPECT_EQ(run({u"correct"_s, id, u"喜欢徒步"_s}).code, 0);
    EXPECT_TRUE(run({u"list"_s}).out.contains(u"喜欢徒步"_s));
}

TEST_F(MemoryCommandsTest, OnATerminalOnePicksWhatIsWritten) {
    QFile file(m_home.filePath(u"said.txt"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("我喜欢爬山\n我养了猫\n");
    file.close();
    PseudoTerminal terminal;
    ASSERT_TRUE(terminal.isOpen());
    QProcess program;
    terminal.attach(program);
    start(program, {u"import"_s, file.fileName()});
    EXPECT_TRUE(terminal.shows(u"写入第几条？"_s)) << terminal.shown().toStdString();
    terminal.type("2\n");
    EXPECT_TRUE(eventually([&] { return program.state() == QProcess::NotRunning; }, 60'000));
    EXPECT_EQ(program.exitCode(), 0) << terminal.shown().toStdString();
    EXPECT_EQ(ids(run({u"list"_s})).size(), 1);
    EXPECT_EQ(ids(run({u"candidates"_s})).size(), 1) << "what was not picked waits";
}

} // namespace lmp
