#pragma once

#include "conversation/ChatWithTwinView.h"
#include "core/Json.h"

#include "support/Await.h"
#include "support/FileThreadEnd.h"
#include "support/ManualClock.h"
#include "support/StubServer.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QPointer>
#include <QTemporaryDir>

namespace lmp {

/// A chat over a scripted service, with the drafts in a folder of its own. Saving works unless a test says otherwise.
class ChatFixture : public ::testing::Test {
protected:
    static inline const QByteArray stream = "/api/relay/chat/stream";
    static inline const QByteArray plain = "/api/relay/chat";
    static inline const QByteArray done = R"({"done":true,"pipCharged":3,"balance":97,"requestId":"r1"})";
    static QByteArray delta(const QByteArray &text) { return R"({"delta":")" + text + "\"}"; }

    ChatFixture() {
        using namespace Qt::StringLiterals;
        server.on("/api/app/conversation/sync", StubServer::reply(200, R"({"ok":true,"revision":1})"));
        QObject::connect(&session, &ConversationSession::saveEnded,
                         [this](const ConversationSession::Saved &saved) { saves.push_back(saved); });
        QObject::connect(chat.get(), &ChatWithTwinView::deltaReceived,
                         [this](const QString &d) { deltas.push_back(d); });
        QObject::connect(chat.get(), &ChatWithTwinView::memoriesReceived,
                         [this](const QList<UsedMemory> &used) { memories.push_back(used); });
        QObject::connect(chat.get(), &ChatWithTwinView::turnCompleted,
                         [this](const TurnOutcome &outcome) { completed.push_back(outcome); });
        QObject::connect(chat.get(), &ChatWithTwinView::turnFailed,
                         [this](const TurnOutcome &outcome) { failed.push_back(outcome); });
        chat->surface = u"terminal"_s;
    }

    /// A request that is still open when the test ends would take its task with it.
    void TearDown() override {
        if (chat)
            chat->stop();
        EXPECT_TRUE(eventually([this] { return !session.isSaving(); }));
        // Answers that were written before this one's have arrived when it has.
        await(session.service().list());
        settle();
    }

    struct Recorded {
        QString event, subjectType, subjectId;
        QVariantMap props;
    };

    /// Sends and waits for the end of the turn and of its save.
    TurnOutcome turn(const QString &text) {
        const auto ends = completed.size() + failed.size();
        const auto before = saves.size();
        EXPECT_TRUE(chat->send(text));
        EXPECT_TRUE(eventually([&] { return completed.size() + failed.size() > ends && saves.size() > before; }));
        if (completed.size() + failed.size() == ends)
            return {};
        return failed.empty() ? completed.back() : failed.back();
    }
    const ConvMessageDTO &message(qsizetype index) const { return session.conversation()->messages.at(index); }
    std::vector<QByteArray> bodies(const QByteArray &path) const {
        std::vector<QByteArray> found;
        for (const auto &request : server.requests) {
            if (request.path == "/api" + path)
                found.push_back(request.body);
        }
        return found;
    }
    QStringList draftFiles() const {
        using namespace Qt::StringLiterals;
        return QDir(folder.filePath(u"ConversationDrafts/v1"_s)).entryList(QDir::Files); // the lock is a hidden one
    }
    static QByteArray frames(std::initializer_list<QByteArray> data) {
        QByteArray bytes;
        for (const QByteArray &one : data)
            bytes += "data: " + one + "\n\n";
        return bytes;
    }
    static QByteArray conversation(const QByteArray &id, int revision, const QByteArray &messages) {
        return R"({"conversation":{"id":")" + id + R"(","title":"t","revision":)" + QByteArray::number(revision) +
               R"(,"messages":[)" + messages + "]}}";
    }

    StubServer server;
    QTemporaryDir folder;
    FileThreadEnd files;
    ManualClock clock;
    std::optional<QString> user = QStringLiteral("u1");
    QString signIn = QStringLiteral("s1");
    std::vector<ConversationSession::Saved> saves;
    std::vector<QString> deltas;
    std::vector<QList<UsedMemory>> memories;
    std::vector<TurnOutcome> completed, failed;
    std::vector<Recorded> records;

    APIClient api{server.url(QStringLiteral("/api")), [] {
                      return QStringLiteral("tok");
                  }};
    ConversationDraftCache drafts{ApplicationSupport::at(folder.path())};
    ConversationAccount account{[this] { return user; },
                                [this] {
                                    return signIn;
                                }};
    SafetyGateStore safety;
    ConversationSession session{ConversationService(api), drafts, account, clock};
    std::unique_ptr<ChatWithTwinView> chat = std::make_unique<ChatWithTwinView>(
        session, safety, api, SSEClient(api.base, api.tokenProvider),
        [this](const QString &event, const QString &type, const QString &id, const QVariantMap &props) {
            records.push_back({event, type, id, props});
        });
};

} // namespace lmp
