#include "dev/AgentScene.h"

#include "dev/DevProcessRegistry.h"
#include "dev/EventText.h"
#include "dev/FakeAgent.h"
#include "support/Await.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

QCoro::Task<> react(DevEngine *engine, AgentScene::Reaction reaction, DevEvent event, QList<bool> *waited) {
    switch (reaction.act) {
    case AgentScene::Act::respond:
        waited->append(co_await engine->respond(
            reaction.id.isEmpty() ? std::get<DevPermissionRequest>(event).id : reaction.id, reaction.decision));
        break;
    case AgentScene::Act::send:
        EXPECT_TRUE((co_await engine->send(u"After"_s)).has_value());
        break;
    case AgentScene::Act::interrupt:
        co_await engine->interrupt();
    }
}

QCoro::Task<QStringList> playWith(DevEngine *engine, AgentScene scene, QString folder, AgentScene::Seen *seen) {
    QStringList events;
    const auto session = co_await engine->start(
        {.cwd = QUrl::fromLocalFile(folder), .resume = scene.resume, .mode = scene.mode, .model = scene.model});
    if (!session)
        co_return QStringList(session.error().message);
    const auto sent = co_await engine->send(u"go"_s);
    EXPECT_TRUE(sent.has_value());
    while (const auto event = co_await session->events.next()) {
        const QString text = eventText(*event);
        events.append(text);
        if (!scene.reactions.isEmpty() && text.startsWith(scene.reactions.first().at))
            co_await react(engine, scene.reactions.takeFirst(), *event, &seen->waited);
        scene.turns -= std::ranges::any_of(scene.turnEnds, [&](const QString &end) { return text.startsWith(end); });
        if (scene.turns == 0)
            co_await engine->stop();
    }
    while (const auto id = session->withdrawn.tryNext())
        seen->withdrawn.append(*id);
    co_return events;
}

} // namespace

AgentScene::Seen AgentScene::play(Make make) const {
    const FakeAgent agent(recording);
    const auto engine = make(agent.program());
    Seen seen;
    QString events = await(playWith(engine.get(), *this, agent.folder(), &seen)).join(u'\n');
    // What was written last may not have been read before.
    EXPECT_TRUE(eventually([] { return DevProcessRegistry::shared().liveCount() == 0; }));
    seen.events = events.replace(agent.folder(), u"REPO"_s).toStdString();
    seen.received = agent.received();
    return seen;
}

AgentScene::Seen AgentScene::twice(Make make, const std::string &expected, int skipped) const {
    Seen seen;
    for (int round = 0; round < 2; ++round) {
        seen = play(make);
        EXPECT_EQ(QString::fromStdString(seen.events).section(u'\n', skipped).toStdString(), expected);
    }
    return seen;
}

} // namespace lmp
