#include "identity/MemoryTexts.h"

#include "MemoryLedgerFixture.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace lmp {

using namespace Qt::StringLiterals;

/// Correcting, going back and importing.
class MemorySheetsTest : public MemoryLedgerFixture {
protected:
    MemoryCorrectionModel &correction() { return *ledger->correction(); }
    MemoryHistoryModel &past() { return *ledger->history(); }
    MemoryImportModel &importer() { return *ledger->importer(); }

    void edit() {
        open();
        ledger->edit(u"m1"_s);
        ASSERT_TRUE(eventually([&] { return correction().state() != MemoryCorrectionModel::State::Loading; }));
    }
    void scan(const QString &text) {
        importer().setText(text);
        importer().scan();
        ASSERT_TRUE(eventually([&] { return !importer().scanning(); }));
    }
};

TEST_F(MemorySheetsTest, ACorrectionEndsAsItsOutcome) {
    struct Case {
        int status;
        QByteArray body;
        QString message;
        bool saved;
    };
    for (const auto &[status, body, message, saved] : std::initializer_list<Case>{
             {200, R"({"previous":"喜欢江边","revision":"r2"})", {}, true},
             {200, R"({"previous":"喜欢江边","revision":""})", u"保存版本未确认，请重新打开记忆。"_s, true},
             {409, "{}", u"这条记忆已在别处更新，输入已保留。当前记忆：喜欢江边。请重新打开后修改。"_s, false},
             {500, "{}", u"未确认保存结果。请先检查最新记忆，不会重复提交。"_s, false},
             {200, "not json", u"未确认保存结果。请先检查最新记忆，不会重复提交。"_s, false}}) {
        SCOPED_TRACE(body.constData());
        server.on(correctPath, StubServer::reply(status, body));
        edit();
        correction().discard();
        EXPECT_FALSE(correction().canSave()) << "nothing is typed";
        correction().setText(u"更喜欢山"_s);
        server.requests.clear();
        correction().save();
        correction().save();
        ASSERT_TRUE(eventually([&] {
            return saved ? correction().state() == MemoryCorrectionModel::State::Saved
                         : correction().message() == message;
        }));
        EXPECT_EQ(requests(correctPath), 1);
        EXPECT_EQ(correction().message(), message);
        EXPECT_EQ(correction().mustReopen(), !saved);
        EXPECT_FALSE(correction().canSave());
        EXPECT_EQ(correction().text(), u"更喜欢山"_s);
        EXPECT_EQ(inputs->text(MemoryCorrectionModel::keyOf(u"m1"_s)), saved ? QString() : u"更喜欢山"_s);
        // What was saved is shown until the ledger is read again, which may be done by now.
        if (!saved)
            EXPECT_EQ(role(u"m1"_s, MemoryItemsModel::ContentRole).toString(), u"喜欢江边"_s);
        correction().close();
        ASSERT_TRUE(eventually([&] { return !ledger->refreshing(); }));
    }
}

TEST_F(MemorySheetsTest, ASheetClosedWhileItSavesIsToldOf) {
    const auto kept = [this] {
        return inputs->text(MemoryCorrectionModel::keyOf(u"m1"_s));
    };
    struct Case {
        int status;
        QByteArray body;
        QString banner;
        bool saved;
    };
    const QString typed = u"更喜欢山"_s;
    for (const auto &[status, body, banner, saved] :
         std::initializer_list<Case>{{200, R"({"previous":"喜欢江边","revision":"r2"})", u"改好了，我记住了。"_s, true},
                                     {409, "{}", u"这条记忆已在别处更新，输入已保留。请重新打开后修改。"_s, false},
                                     {500, "{}", u"未确认保存结果。请先检查最新记忆，不会重复提交。"_s, false}}) {
        // Closed, closed and another opened, closed and opened again.
        for (const QString &next : {QString(), u"m2"_s, u"m1"_s}) {
            SCOPED_TRACE(status);
            SCOPED_TRACE(next.toStdString());
            edit();
            correction().discard();
            correction().setText(typed);
            hold(correctPath);
            correction().save();
            ASSERT_TRUE(eventually([&] { return held; }));
            correction().close();
            ledger->closeBanner();
            if (!next.isEmpty())
                ledger->edit(next);
            const bool again = next == u"m1"_s;
            EXPECT_EQ(correction().state() == MemoryCorrectionModel::State::Saving, again);
            EXPECT_FALSE(correction().canSave()) << "not a second time";
            server.on(ledgerPath, [](const auto &, QTcpSocket &socket) { socket.abort(); });
            release(status, body);
            ASSERT_TRUE(eventually([&] {
                return again ? correction().state() != MemoryCorrectionModel::State::Saving
                             : ledger->banner() == banner || ledger->banner() == MemoryTexts::loadFailed();
            }));
            EXPECT_EQ(kept(), saved ? QString() : typed);
            EXPECT_EQ(role(u"m1"_s, MemoryItemsModel::ContentRole).toString(), saved ? typed : u"喜欢江边"_s);
            ASSERT_TRUE(eventually([&] {
                return !ledger->refreshing() && correction().state() != MemoryCorrectionModel::State::Loading;
            }));
            settle();
            correction().close();
            server.on(ledgerPath, StubServer::reply(200, bundle()));
            open();
        }
    }
}

TEST_F(MemorySheetsTest, NothingIsSavedUponAWordingThatWasNotSeen) {
    using State = MemoryCorrectionModel::State;
    edit();
    correction().setText(u"更喜欢山"_s);
    correction().close();
    ASSERT_TRUE(await(ledger->preserve()));
    // Changed elsewhere, while the program was not there.
    server.on(historyPath, StubServer::reply(200, history("r2", "喜欢湖边")));
    restart();
    ASSERT_TRUE(eventually([&] { return !inputs->keys().isEmpty(); }));
    edit();
    EXPECT_EQ(correction().message(), u"这条记忆已在别处更新，输入已保留。当前记忆：喜欢湖边。请重新打开后修改。"_s);
    EXPECT_FALSE(correction().canSave());
    EXPECT_EQ(correction().text(), u"更喜欢山"_s);
    // Closing it is no answer; reading it again is.
    correction().close();
    ledger->edit(u"m1"_s);
    ASSERT_TRUE(eventually([&] { return correction().state() == State::Ready; }));
    EXPECT_FALSE(correction().canSave());
    correction().reopen();
    ASSERT_TRUE(eventually([&] { return correction().state() == State::Ready; }));
    EXPECT_TRUE(correction().canSave()) << correction().message().toStdString();
    // And once more changed, before that is read.
    server.on(historyPath, StubServer::reply(200, history("r3", "喜欢海边")));
    correction().reopen();
    ASSERT_TRUE(eventually([&] { return correction().state() == State::Ready; }));
    EXPECT_FALSE(correction().canSave());
    correction().discard();
    EXPECT_TRUE(correction().message().isEmpty());
    EXPECT_EQ(correction().text(), u"喜欢海边"_s);
    EXPECT_TRUE(inputs->keys().isEmpty());
}

TEST_F(MemorySheetsTest, WithoutARevisionNothingIsSaved) {
    server.on(historyPath,
              StubServer::reply(200, R"({"memoryId":"m1","current":"喜欢江边","entries":[],"canRevert":false})"));
    edit();
    correction().setText(u"更喜欢山"_s);
    EXPECT_FALSE(correction().canSave());
    EXPECT_EQ(correction().message(), u"当前服务尚未提供可核对的版本，暂不能安全保存。"_s);
    server.on(historyPath, StubServer::reply(500, R"({"reason":"服务开小差了。"})"));
    correction().reopen();
    ASSERT_TRUE(eventually([&] { return correction().state() == MemoryCorrectionModel::State::Unreadable; }));
    EXPECT_EQ(correction().message(), u"没读到版本历史：服务开小差了。这不代表「这条没改过」。"_s);
    EXPECT_EQ(correction().text(), u"更喜欢山"_s);
}

TEST_F(MemorySheetsTest, WhatIsTypedOutlivesTheSheetAndTheProgram) {
    edit();
    correction().setText(u"更喜欢山，尤其是"_s);
    importer().setText(u"我养了猫"_s);
    correction().close();
    EXPECT_TRUE(role(u"m1"_s, MemoryItemsModel::DraftedRole).toBool());
    clock.advance(MemoryInputs::typingPause);
    ASSERT_TRUE(await(ledger->preserve()));
    restart();
    ASSERT_TRUE(eventually([&] { return inputs->keys().size() == 3; }));
    EXPECT_EQ(importer().text(), u"我养了猫"_s);
    edit();
    EXPECT_EQ(correction().text(), u"更喜欢山，尤其是"_s);
    EXPECT_TRUE(correction().canSave());
    correction().discard();
    ASSERT_TRUE(await(ledger->preserve()));
    // Another account finds nothing, and the first one its own again.
    for (const auto &[who, count] : std::initializer_list<std::pair<QString, int>>{{u"u2"_s, 0}, {u"u1"_s, 1}}) {
        user = who;
        ledger->recheckAccount();
        await(ledger->preserve());
        ASSERT_TRUE(eventually([&] { return inputs->keys().size() == count; })) << who.toStdString();
    }
}

TEST_F(MemorySheetsTest, WhatCannotBeKeptIsSaid) {
    edit();
    // A file where the folder should be.
    QFile blocked(folder.filePath(u"MemoryInput"_s));
    QDir(blocked.fileName()).removeRecursively();
    ASSERT_TRUE(blocked.open(QIODevice::WriteOnly));
    correction().setText(u"更喜欢山"_s);
    EXPECT_FALSE(await(ledger->preserve()));
    EXPECT_FALSE(ledger->inputNotice().isEmpty());
    EXPECT_EQ(correction().text(), u"更喜欢山"_s);
}

TEST_F(MemorySheetsTest, GoingBackSaysWhatIsKnown) {
    struct Case {
        int status;
        QByteArray body;
        QString message;
        bool failed;
    };
    for (const auto &[status, body, message, failed] :
         std::initializer_list<Case>{{200, R"({"content":"喜欢安静","changed":true,"revision":"r2"})",
                                      u"已改回上一版——这次「改回」本身也记进了版本历史。"_s, false},
                                     {200, R"({"content":"x","changed":false,"revision":"r1"})",
                                      u"这条已经是上一版的说法了，没有改动。"_s, false},
                                     {409, "{}", u"记忆已在别处更新，没有覆盖新内容。请核对后重新打开。"_s, true},
                                     {500, "{}", u"未确认改回结果，请先检查最新记忆。"_s, true}}) {
        SCOPED_TRACE(body.constData());
        server.on(revertPath, StubServer::reply(status, body));
        open();
        ledger->showHistory(u"m1"_s);
        EXPECT_EQ(past().message(), u"正在读版本历史…"_s);
        ASSERT_TRUE(eventually([&] { return past().state() == MemoryHistoryModel::State::Loaded; }));
        EXPECT_EQ(past().count(), 1);
        server.requests.clear();
        past().revert();
        past().revert();
        ASSERT_TRUE(eventually(
            [&] { return past().state() == MemoryHistoryModel::State::Loaded && !past().message().isEmpty(); }));
        EXPECT_EQ(requests(revertPath), 1);
        EXPECT_EQ(past().message(), message);
        EXPECT_EQ(past().failed(), failed);
        EXPECT_EQ(past().canRevert(), !failed) << "what may have changed must be read first";
        past().close();
        ASSERT_TRUE(eventually([&] { return !ledger->refreshing(); }));
    }
}

TEST_F(MemorySheetsTest, AnImportWritesWhatIsPickedOneAfterAnother) {
    server.on(extractPath, StubServer::reply(200, R"({"candidates":[{"id":"a","content":"1","why":"w","scope":"s"},
        {"id":"b","content":"2","why":"w","scope":"s"},{"id":"c","content":"3","why":"w","scope":"s"},
        {"id":"d","content":"4","why":"w","scope":"s"}],"pipCharged":2})"));
    int atOnce = 0, most = 0;
    server.on(confirmPath, [&](const StubServer::Request &request, QTcpSocket &socket) {
        most = std::max(most, ++atOnce);
        const auto answer = request.body.contains("\"b\"") ? StubServer::message(500, "{}")
                                                           : StubServer::message(200, R"({"supersededContent":"旧"})");
        QMetaObject::invokeMethod(
            &socket,
            [&socket, &atOnce, answer] {
                --atOnce;
                socket.write(answer);
            },
            Qt::QueuedConnection);
    });
    scan(u"一\n二\n"_s.repeated(40));
    const auto sent = std::ranges::find(server.requests, QByteArray(extractPath), &StubServer::Request::path);
    ASSERT_NE(sent, server.requests.end());
    EXPECT_EQ(Json::decode<MemoryService::ExtractBody>(sent->body)->messages.size(), 60);
    EXPECT_EQ(importer().step(), MemoryImportModel::Step::Review);
    EXPECT_EQ(importer().picked(), 0);
    importer().goToConfirm();
    EXPECT_EQ(importer().step(), MemoryImportModel::Step::Review) << "nothing is picked";
    for (const QString &id : {u"a"_s, u"b"_s, u"c"_s})
        importer().pick(id, true);
    importer().goToConfirm();
    importer().write();
    importer().write();
    ASSERT_TRUE(eventually([&] { return importer().step() == MemoryImportModel::Step::Done; }));
    EXPECT_EQ(most, 1);
    EXPECT_EQ(requests(confirmPath), 3);
    EXPECT_EQ(importer().results(),
              (QStringList{u"写进了 2 条。"_s, u"1 条没写进去，仍留在隔离区——记忆账本的「等你确认」里能再试。"_s,
                           u"2 条取代了你更早的记忆——旧的仍留在账本里，标着「已被取代」。"_s}));
    // 20 lines were never read by anybody.
    const QString rest = u"一\n二\n"_s.repeated(10);
    EXPECT_EQ(importer().text(), rest);
    EXPECT_EQ(importer().restText(), u"还有 20 段没有扫描，文本还在，可以接着扫。"_s);
    importer().open();
    EXPECT_EQ(importer().step(), MemoryImportModel::Step::Text);
    ASSERT_TRUE(await(ledger->preserve()));
    restart();
    ASSERT_TRUE(eventually([&] { return importer().text() == rest; }));
}

TEST_F(MemorySheetsTest, WhatIsReadStaysWhatWasSeen) {
    QFile file(folder.filePath(u"chat.txt"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("文件里的");
    file.close();
    importer().setSource(MemoryImportModel::Source::Manual);
    importer().setText(u"自己写的"_s);
    importer().setSource(MemoryImportModel::Source::ChatFile);
    importer().setText(u"聊天里的\n"_s.repeated(61));
    hold(extractPath);
    importer().readFile(file.fileName()); // arrives when the reading has begun
    importer().scan();
    ASSERT_TRUE(eventually([&] { return held && !importer().errorText().isEmpty(); }));
    importer().readFile(file.fileName());
    importer().setText(u"别的"_s);
    importer().setSource(MemoryImportModel::Source::Manual);
    EXPECT_EQ(importer().source(), MemoryImportModel::Source::ChatFile);
    release(200, R"({"candidates":[]})");
    ASSERT_TRUE(eventually([&] { return !importer().scanning(); }));
    EXPECT_EQ(importer().text(), u"聊天里的\n"_s.repeated(61));
    importer().goOn();
    EXPECT_EQ(importer().step(), MemoryImportModel::Step::Text);
    EXPECT_EQ(importer().text(), u"聊天里的\n"_s);
    importer().setSource(MemoryImportModel::Source::Manual);
    EXPECT_EQ(importer().text(), u"自己写的"_s);
}

TEST_F(MemorySheetsTest, AnImportThatFindsOrWritesNothingSaysSo) {
    server.on(extractPath, StubServer::reply(500, "{}"));
    scan(u"我养了猫"_s);
    EXPECT_EQ(importer().errorText(), u"扫描失败，稍后再试"_s);
    EXPECT_EQ(importer().step(), MemoryImportModel::Step::Text);
    EXPECT_EQ(importer().text(), u"我养了猫"_s);
    server.on(extractPath, StubServer::reply(200, R"({"candidates":[]})"));
    scan(u"我养了猫"_s);
    EXPECT_EQ(importer().step(), MemoryImportModel::Step::Review);
    EXPECT_EQ(importer().found(), 0);
    importer().back();
    server.on(extractPath,
              StubServer::reply(200, R"({"candidates":[{"id":"a","content":"1","why":"w","scope":"s"}]})"));
    server.on(confirmPath, StubServer::reply(500, "{}"));
    scan(u"我养了猫"_s);
    importer().pick(u"a"_s, true);
    importer().goToConfirm();
    importer().write();
    ASSERT_TRUE(eventually([&] { return importer().step() == MemoryImportModel::Step::Done; }));
    EXPECT_EQ(importer().results(), QStringList{u"一条都没写进去，稍后再试"_s});
    EXPECT_EQ(importer().text(), u"我养了猫"_s) << "it was not written anywhere";
}

TEST_F(MemorySheetsTest, AFileIsTakenWhenItIsText) {
    struct Case {
        QByteArray bytes;
        QString text;
    };
    const QString path = folder.filePath(u"chat.txt"_s);
    for (const auto &[bytes, text] : std::initializer_list<Case>{{"一\r\n二", u"一\r\n二"_s},
                                                                 {"\xef\xbb\xbf一", u"一"_s},
                                                                 {QByteArray("\xff\xfe\x00\x4e", 4), u"一"_s},
                                                                 {"\xd2\xbb\xb6\xfe", {}},
                                                                 {QByteArray("a\0b", 3), {}}}) {
        importer().discard();
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        importer().readFile(QUrl::fromLocalFile(path).toString());
        ASSERT_TRUE(eventually([&] { return !importer().text().isEmpty() || !importer().errorText().isEmpty(); }));
        EXPECT_EQ(importer().text(), text);
        EXPECT_EQ(importer().errorText().isEmpty(), !text.isEmpty());
    }
    const QString pipe = folder.filePath(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString &none : {folder.filePath(u"none"_s), folder.path(), pipe}) {
        importer().discard();
        importer().readFile(none);
        EXPECT_TRUE(eventually([&] { return importer().errorText() == u"这个文件打不开："_s + none; }));
    }
}

} // namespace lmp
