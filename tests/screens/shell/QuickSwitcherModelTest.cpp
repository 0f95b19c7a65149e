#include "screens/shell/QuickSwitcherModel.h"
#include "screens/shell/AppCommands.h"
#include "support/Await.h"

#include <QAbstractItemModelTester>
#include <QElapsedTimer>
#include <QStringListModel>

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using Kind = SwitcherEntry::Kind;

TEST(PinyinTest, TitlesAreFoundAsTheyAreTyped) {
    struct Case {
        QString title, typed;
        bool found;
    };
    const std::vector<Case> cases{
        {u"重庆长江大桥"_s, u"cq"_s, true},
        {u"重庆长江大桥"_s, u"chongqing"_s, true},
        {u"重庆长江大桥"_s, u"changjiang"_s, true},
        {u"重庆长江大桥"_s, u"chqcj"_s, true},
        {u"重庆长江大桥"_s, u"长j大"_s, true},
        {u"重庆长江大桥"_s, u"zq"_s, true},
        {u"重庆长江大桥"_s, u"qc桥"_s, false},
        {u"绿色的植物"_s, u"lvse"_s, true},
        {u"绿色的植物"_s, u"luse"_s, true},
        {u"AI 对话：Plan B"_s, u"planb"_s, true},
        {u"AI 对话：Plan B"_s, u"aidh"_s, true},
        {u"AI 对话：Plan B"_s, u"lanb"_s, false},
        {u"𠮷野家"_s, u"yj"_s, true},
        {u"—— ……"_s, u"a"_s, false},
        {{}, u"a"_s, false},
    };
    for (const auto &[title, typed, found] : cases)
        EXPECT_EQ(Pinyin::spell({title}).front().rank(typed) >= 0, found)
            << title.toStdString() << " by " << typed.toStdString();
    // What is typed as it is written comes first, then what begins with it.
    const auto written = Pinyin::spell({u"时间"_s, u"十件事"_s, u"零时间"_s});
    EXPECT_LT(written[0].rank(u"时间"_s), written[0].rank(u"shijian"_s));
    EXPECT_LT(written[0].rank(u"shij"_s), written[2].rank(u"shij"_s));
    // Nobody's title can keep the window waiting.
    QElapsedTimer timer;
    timer.start();
    Pinyin::spell({u"啊"_s.repeated(2000)}).front().rank(u"a"_s.repeated(64));
    EXPECT_LT(timer.elapsed(), 2000);
}

TEST(QuickSwitcherModelTest, OffersTheLikeliestFirst) {
    QList<SwitcherEntry> there{{.key = u"1"_s, .title = u"晚饭"_s, .iconName = {}},
                               {.key = u"2"_s, .title = u"晚上的歌"_s, .iconName = {}, .unread = 3},
                               {.kind = Kind::Page, .key = u"4"_s, .title = u"我的"_s, .iconName = {}}};
    QuickSwitcherModel model([&] { return there; });
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QStringList chosen;
    QObject::connect(&model, &QuickSwitcherModel::chosen, [&](const SwitcherEntry &entry) { chosen << entry.key; });
    const auto shown = [&] {
        QStringList titles;
        for (int row = 0; row < model.rowCount(); ++row)
            titles << model.index(row).data(QuickSwitcherModel::TitleRole).toString();
        return titles;
    };

    model.open();
    EXPECT_EQ(shown(), (QStringList{u"晚上的歌"_s, u"晚饭"_s, u"我的"_s}));
    model.setQuery(u"饭"_s);
    EXPECT_EQ(shown(), QStringList{u"晚饭"_s});
    model.setQuery(u"W"_s);
    // How titles are read comes later, from another thread, and fits what has been typed meanwhile.
    EXPECT_TRUE(eventually([&] { return shown() == QStringList{u"晚上的歌"_s, u"晚饭"_s, u"我的"_s}; }));
    model.move(-1);
    EXPECT_EQ(model.current(), 2);
    model.move(1);
    model.choose(model.current());
    model.setQuery(u"没有"_s);
    EXPECT_EQ(model.current(), -1);
    model.move(1);
    model.choose(model.current());
    EXPECT_EQ(chosen, QStringList{u"2"_s});
    there.clear();
    model.open();
    EXPECT_EQ(model.count(), 0);
}

TEST(QuickSwitcherModelTest, KeepsUpWithTitlesThatComeWhileItIsOpen) {
    QStringListModel titles({u"新对话"_s, u"晚饭"_s});
    QuickSwitcherModel model([&] {
        QList<SwitcherEntry> there;
        for (int row = 0; row < titles.rowCount(); ++row)
            there << SwitcherEntry{.key = QString::number(row), .title = titles.stringList()[row], .iconName = {}};
        return there;
    });
    model.keepUpWith(&titles);
    model.open();
    model.setCurrent(1);
    titles.setStringList({u"重庆的春天"_s, u"晚饭"_s});
    EXPECT_TRUE(eventually([&] { return model.index(0).data() == u"重庆的春天"_s; }));
    EXPECT_EQ(model.current(), 1);
    model.setQuery(u"cq"_s);
    EXPECT_TRUE(eventually([&] { return model.count() == 1; }));
    titles.setData(titles.index(1), u"常去的店"_s);
    EXPECT_TRUE(eventually([&] { return model.count() == 2; }));
    model.close();
    titles.setStringList({});
    settle();
    EXPECT_EQ(model.count(), 2);
}

TEST(AppCommandsTest, TheTableIsWhole) {
    AppCommands commands;
    const QAbstractItemModelTester tester(&commands, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QStringList keys;
    for (qsizetype at = 0; at < AppCommands::table().size(); ++at) {
        EXPECT_EQ(int(AppCommands::table()[at].command), at);
        keys << AppCommands::table()[at].keys;
    }
    EXPECT_EQ(keys.removeDuplicates(), 0);
    std::vector<AppCommands::Command> run;
    QObject::connect(&commands, &AppCommands::triggered, [&](AppCommands::Command command) { run.push_back(command); });
    commands.run(AppCommands::Command::NewConversation);
    commands.run(AppCommands::Command::CheckUpdates);
    commands.run(AppCommands::Command::Quit);
    // Whoever cannot sign in may have to look for a newer program.
    commands.setThere(AppCommands::Needs::Service);
    commands.run(AppCommands::Command::NewConversation);
    commands.run(AppCommands::Command::CheckUpdates);
    commands.setThere(AppCommands::Needs::Shell);
    commands.run(AppCommands::Command::NewConversation);
    EXPECT_EQ(run, (std::vector{AppCommands::Command::Quit, AppCommands::Command::CheckUpdates,
                                AppCommands::Command::NewConversation}));
}

} // namespace lmp
