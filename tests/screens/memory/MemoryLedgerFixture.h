#pragma once

#include "screens/memory/MemoryInputs.h"
#include "screens/memory/MemoryLedgerModel.h"

#include "support/Await.h"
#include "support/FileThreadEnd.h"
#include "support/ManualClock.h"
#include "support/StubServer.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QPointer>
#include <QTemporaryDir>

namespace lmp {

/// A window's ledger over a scripted service: three memories, two candidates and a chapter, unless a test says
/// otherwise.
class MemoryLedgerFixture : public ::testing::Test {
protected:
    static constexpr const char *ledgerPath = "/api/app/memory";
    static constexpr const char *historyPath = "/api/app/memory/history";
    static constexpr const char *confirmPath = "/api/app/memory/candidate/confirm";
    static constexpr const char *correctPath = "/api/app/memory/correct";
    static constexpr const char *revertPath = "/api/app/memory/revert";
    static constexpr const char *extractPath = "/api/app/memory/extract";

    MemoryLedgerFixture() {
        server.on(ledgerPath, StubServer::reply(200, bundle()));
        server.on(historyPath, StubServer::reply(200, history("r1", "喜欢江边")));
        restart();
    }
    ~MemoryLedgerFixture() override {
        // A request that nobody waits for would be left behind with its coroutine.
        eventually([this] { return !ledger || !ledger->refreshing(); });
        settle();
    }

    /// The program again, on the same disk.
    void restart() {
        testers.clear();
        ledger.reset();
        inputs = std::make_unique<MemoryInputs>(ApplicationSupport::at(folder.path()), account(), clock);
        ledger = std::make_unique<MemoryLedgerModel>(
            MemoryServices{.service = MemoryService(api), .account = account(), .inputs = inputs.get()});
        using enum QAbstractItemModelTester::FailureReportingMode;
        for (QAbstractItemModel *model : std::initializer_list<QAbstractItemModel *>{
                 ledger->items(), ledger->candidates(), ledger->chapters(), ledger->importer()->candidates()})
            testers.push_back(std::make_unique<QAbstractItemModelTester>(model, Fatal));
    }
    ConversationAccount account() {
        return {[this] { return user; },
                [this] {
                    return user.value_or(QString()) + signIn;
                }};
    }
    void open() {
        ledger->open();
        ASSERT_TRUE(eventually([this] { return isLoaded() && !ledger->refreshing(); }));
    }
    bool isLoaded() const { return ledger->state() == MemoryLedgerModel::State::Loaded; }
    QStringList shown() const {
        QStringList ids;
        for (int row = 0; row < ledger->items()->rowCount(); ++row)
            ids << ledger->items()->data(ledger->items()->index(row), MemoryItemsModel::MemoryIdRole).toString();
        return ids;
    }
    QVariant role(const QString &id, MemoryItemsModel::Role role) const {
        return ledger->items()->data(ledger->items()->index(int(shown().indexOf(id))), role);
    }
    /// Takes requests of `path` and answers none until `release`.
    void hold(const char *path) {
        server.on(path, [this](const auto &, QTcpSocket &socket) { held = &socket; });
    }
    void release(int status, const QByteArray &body) {
        ASSERT_TRUE(eventually([this] { return held; }));
        held->write(StubServer::message(status, body));
        held->flush();
        held = nullptr;
    }
    int requests(const QByteArray &path) const {
        return int(std::ranges::count(server.requests, path, &StubServer::Request::path));
    }

    static QByteArray item(const QByteArray &id, const QByteArray &content, const QByteArray &more = {}) {
        return R"({"id":")" + id + R"(","content":")" + content +
               R"(","kind":"k","truth":"pref","source":"聊天","confidence":"高","scope":"全部")" + more + "}";
    }
    static QByteArray bundle() {
        return R"({"items":[)" + item("m1", "喜欢江边") + "," +
               item("m2", "住在成都", R"(,"supersedes":"m3","later":7)") + "," + item("m3", "Ｌｉｖｅｓ in Hangzhou") +
               R"(],"candidates":[{"id":"c1","content":"养猫","why":"说过","scope":"全部"},
                {"id":"c2","content":"怕高","why":"说过","scope":"全部"}],
                "chapters":[{"id":"h1","n":1,"title":"t","date":"d","real":"r","story":"s","evidence":[],"pending":true}]})";
    }
    static QByteArray history(const QByteArray &revision, const QByteArray &current) {
        return R"({"revision":")" + revision + R"(","memoryId":"m1","current":")" + current +
               R"(","entries":[{"id":"1","memoryId":"m1","previous":"喜欢安静","next":"喜欢江边","source":"s","at":"2026-01-02T03:04:05Z"}],"canRevert":true})";
    }

    StubServer server;
    QPointer<QTcpSocket> held;
    QTemporaryDir folder;
    FileThreadEnd files;
    ManualClock clock;
    std::optional<QString> user = QStringLiteral("u1");
    QString signIn = QStringLiteral("s");
    APIClient api{server.url(QStringLiteral("/api")), [] {
                      return QStringLiteral("tok");
                  }};
    std::unique_ptr<MemoryInputs> inputs;
    std::unique_ptr<MemoryLedgerModel> ledger;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
};

} // namespace lmp
