#include "screens/gallery/ShellScenes.h"

#include "conversation/ConversationService.h"
#include "screens/gallery/GalleryFixtures.h"
#include "screens/shell/WindowApplication.h"
#include "screens/shell/WindowScene.h"

#include <QQuickItem>

namespace lmp {

using namespace Qt::StringLiterals;
using Fixtures = GalleryFixtures;
using Scene = std::function<void(GalleryStage &)>;

namespace {

/// The shell with so many conversations, and something done in it.
Scene with(int conversations, std::function<void(WindowScene &)> act = {}) {
    return [conversations, act = std::move(act)](GalleryStage &stage) {
        Fixtures::serve(stage.service(), conversations);
        Fixtures::toShell(stage);
        stage.until(u"the conversations"_s,
                    [&stage, conversations] { return stage.scene().conversations()->count() == conversations; });
        if (act)
            stage.then([&stage, act] { act(stage.scene()); });
    };
}

Scene tab(WindowNavigation::Tab tab) {
    return with(5, [tab](WindowScene &scene) { scene.navigation()->setTab(tab); });
}

Scene settings(WindowNavigation::Section section) {
    return with(5, [section](WindowScene &scene) { scene.navigation()->openSection(section); });
}

Scene update(GalleryService::Answer manifest) {
    return [manifest](GalleryStage &stage) {
        with(5)(stage);
        stage.until(u"the check at the start"_s, [&stage] { return !stage.scene().updates()->isChecking(); });
        stage.then([&stage, manifest] {
            stage.service().answer(u"/downloads/desktop/mac/latest.json"_s, manifest);
            stage.scene().updates()->check(true);
        });
        stage.until(u"the alert"_s, [&stage] { return stage.scene().updates()->isAlertOpen(); });
    };
}

QByteArray manifest(qint64 build) {
    return Json::encode(
        UpdateChecker::Manifest{.version = u"0.9.0"_s,
                                .build = build,
                                .url = u"https://example.com/lumenpair"_s,
                                .notes = u"- 回复更快了\n- 修好了深色下看不清的几处\n- 草稿不会再丢"_s});
}

void switcher(GalleryStage &stage, const QString &query) {
    with(50)(stage);
    stage.until(u"what is read after the first frame"_s,
                [&stage] { return stage.visibleItem(u"WindowExtras"_s) != nullptr; });
    stage.then([&stage] { stage.scene().commands()->run(AppCommands::Command::Switcher); });
    if (query.isEmpty())
        return;
    stage.type(query);
    stage.until(u"what matches"_s, [&stage] { return stage.scene().switcher()->count() > 0; });
}

/// A quit whose save fails.
void quitting(GalleryStage &stage) {
    struct Kept {
        LocalInputRegistry::Registration registration;
    };
    with(5)(stage);
    stage.then([&stage] {
        auto &kept = stage.make<Kept>();
        kept.registration =
            stage.program().application().localInput().add([]() -> QCoro::Task<bool> { co_return false; });
        stage.program().quitting().requestTermination();
    });
    stage.until(u"the warning"_s,
                [&stage] { return stage.program().quitting().state() == MacQuitCoordinator::State::Warning; });
}

/// Leaving a conversation that nobody keeps, however.
void leaving(GalleryStage &stage, const std::function<void(WindowScene &)> &leave) {
    Fixtures::serve(stage.service(), 5);
    stage.service().stream(u"/api/relay/chat/stream"_s, Fixtures::reply({u"好，不留。"_s}), true);
    Fixtures::toShell(stage);
    stage.then([&stage] {
        stage.scene().startConversation(true);
        stage.scene().chat()->setInput(u"这句不要留下。"_s);
        stage.scene().chat()->send();
    });
    stage.until(u"the end of the turn"_s, [&stage] { return stage.scene().chat()->isIdle(); });
    stage.then([&stage, leave] { leave(stage.scene()); });
    stage.until(u"the question"_s, [&stage] { return stage.scene().questions()->leaveWarning(); });
}

/// A link to another conversation, while a reply is on its way.
void linked(GalleryStage &stage) {
    Fixtures::serve(stage.service(), 5);
    stage.service().stream(u"/api/relay/chat/stream"_s, Fixtures::reply({u"那要从头说起。"_s}, false), false);
    Fixtures::ask(stage, u"讲个长一点的故事。"_s);
    stage.until(u"the reply"_s, [&stage] { return stage.scene().chat()->sending(); });
    stage.then([&stage] { stage.scene().navigation()->openLink(u"lumenpair://conversation/c2"_s); });
    stage.until(u"the question"_s, [&stage] { return stage.scene().questions()->leaveWarning(); });
}

/// What is told over the whole window: that another service was asked for, in many words, by somebody unkind.
void told(GalleryStage &stage) {
    with(8, [](WindowScene &scene) { scene.setNotice(SingleInstance::otherSiteText()); })(stage);
    stage.then([&stage] {
        stage.service().refuse(u"/api/app/conversations"_s, 500, u"internal"_s,
                               u"没有读出来\u202e。\n"_s.repeated(9999));
        stage.scene().conversations()->refresh();
    });
    stage.until(u"the reason"_s, [&stage] { return !stage.scene().conversations()->errorText().isEmpty(); });
}

/// Up to the shell, where product analytics are asked about.
void toQuestion(GalleryStage &stage) {
    Fixtures::serve(stage.service(), 5);
    stage.run(u"gallery"_s);
    stage.until(u"the shell"_s, [&stage] {
        if (auto *root = stage.scene().rootView()) {
            root->finishMigrationNotice();
            root->finishOnboarding();
            root->finishHandleSetup();
        }
        return stage.scene().stage() == WindowScene::Stage::Shell;
    });
}

void drafted(GalleryStage &stage) {
    with(8)(stage);
    stage.service().reply(u"/api/app/conversation?id=c2"_s,
                          ConversationService::GetResp{Fixtures::named(u"c2"_s, u"晚饭"_s, {})});
    stage.then([&stage] { stage.scene().openConversation(u"c2"_s); });
    stage.until(u"the conversation"_s, [&stage] { return stage.scene().chat()->conversationId() == u"c2"_s; });
    stage.then([&stage] {
        stage.scene().chat()->setInput(u"想吃面，但是"_s);
        stage.scene().startConversation();
    });
    stage.until(u"the draft in the list"_s, [&stage] {
        auto *list = stage.scene().conversations();
        for (int row = 0; row < list->rowCount(); ++row) {
            if (list->data(list->index(row), ConversationListModel::DraftRole).toBool())
                return true;
        }
        return false;
    });
}

} // namespace

QList<GalleryScene> ShellScenes::tabs() {
    using enum WindowNavigation::Tab;
    using enum WindowNavigation::Section;
    const auto unavailable = [](GalleryStage &stage) {
        Fixtures::serve(stage.service(), 5);
        Fixtures::toShell(stage);
        stage.then([&stage] { stage.scene().navigation()->openLink(u"lumenpair://hologram/7"_s); });
        stage.until(u"the page"_s, [&stage] { return stage.scene().navigation()->unavailableOpen(); });
    };
    const auto collapsed = with(12, [](WindowScene &scene) { scene.layout()->setSidebarCollapsed(true); });
    const auto wide =
        with(12, [](WindowScene &scene) { scene.layout()->setSidebarWidth(WindowLayout::widestSidebar); });
    return {{u"tab-now"_s, tab(Now)},
            {u"tab-social"_s, tab(Social)},
            {u"tab-market"_s, tab(Market)},
            {u"tab-studio"_s, tab(Studio)},
            {u"tab-me"_s, tab(Me)},
            {u"settings-appearance"_s, settings(Appearance)},
            {u"settings-privacy"_s, settings(Privacy)},
            {u"settings-features"_s, settings(Features)},
            {u"settings-updates"_s, settings(Updates)},
            {u"settings-keys"_s, settings(Keys)},
            {u"unavailable"_s, unavailable},
            {u"sidebar-collapsed"_s, collapsed},
            {u"sidebar-wide"_s, wide},
            {u"smallest-window"_s, with(12), {920, 600}},
            {u"smallest-window-settings"_s, settings(Appearance), {920, 600}}};
}

QList<GalleryScene> ShellScenes::lists() {
    const auto failed = [](GalleryStage &stage) {
        Fixtures::serve(stage.service());
        stage.service().refuse(u"/api/app/conversations"_s, 500, u"internal"_s, u"对话列表没有读出来，请稍后再试。"_s);
        Fixtures::toShell(stage);
    };
    const auto loading = [](GalleryStage &stage) {
        toQuestion(stage);
        stage.then([&stage] {
            stage.scene().telemetry()->answer(false);
            stage.service().stall(u"/api/app/conversations"_s);
            stage.scene().conversations()->refresh();
        });
    };
    return {{u"list-empty"_s, with(0)},
            {u"list-50"_s, with(50)},
            {u"list-found"_s, with(50, [](WindowScene &scene) { scene.conversations()->find(u"面"_s); })},
            {u"list-none-found"_s, with(50, [](WindowScene &scene) { scene.conversations()->find(u"没有的"_s); })},
            {u"list-draft"_s, drafted},
            {u"list-failed"_s, failed},
            {u"list-loading"_s, loading}};
}

QList<GalleryScene> ShellScenes::questions() {
    return {{u"telemetry-question"_s, toQuestion},
            {u"update-no-channel"_s, update({.status = 404})},
            {u"update-failed"_s, update({.status = 500})},
            {u"update-unreadable"_s, update({.body = "{\"version\": 3}"})},
            {u"update-none"_s, update({.body = manifest(1)})},
            {u"update-offered"_s, update({.body = manifest(99)})},
            {u"quit-not-saved"_s, quitting},
            {u"leave-incognito"_s,
             [](GalleryStage &stage) {
                 leaving(stage, [](WindowScene &scene) { scene.openConversation(u"c2"_s); });
             }},
            {u"quit-incognito"_s,
             [](GalleryStage &stage) {
                 leaving(stage, [](WindowScene &scene) { scene.commands()->run(AppCommands::Command::Quit); });
             }},
            {u"link-stops-reply"_s, linked},
            {u"window-notice"_s, told},
            {u"switcher"_s,
             [](GalleryStage &stage) {
                 switcher(stage, {});
             }},
            {u"switcher-found"_s, [](GalleryStage &stage) {
                 switcher(stage, u"zm"_s);
             }}};
}

QList<GalleryScene> ShellScenes::all() {
    return tabs() + lists() + questions();
}

} // namespace lmp
