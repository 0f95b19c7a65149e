#include "screens/gallery/MemoryScenes.h"

#include "identity/MemoryService.h"
#include "screens/gallery/GalleryFixtures.h"
#include "screens/shell/WindowScene.h"

#include <QQuickItem>

namespace lmp {

using namespace Qt::StringLiterals;
using Fixtures = GalleryFixtures;
using Scene = std::function<void(GalleryStage &)>;

namespace {

const QString path = u"/api/app/memory"_s;
const QString historyPath = u"/api/app/memory/history"_s;

MemoryLedgerModel &model(GalleryStage &stage) {
    return *stage.scene().ledger();
}

MemoryItemDTO item(const QString &id, const QString &content, MemoryTruth truth) {
    MemoryItemDTO memory;
    memory.id = id;
    memory.content = content;
    memory.truth = truth;
    memory.source = u"你确认的候选"_s;
    memory.scope = truth == MemoryTruth::pref ? u"聊天与建议"_s : u"全部"_s;
    memory.confidence = u"高"_s;
    memory.validFrom = u"2026-03-08T09:00:00Z"_s;
    return memory;
}

MemoryBundle some() {
    using enum MemoryTruth;
    auto moved = item(u"m2"_s, u"住在江北，周末坐轻轨出门"_s, fact);
    moved.supersedes = u"m3"_s;
    moved.touchedAt = u"2026-11-18T09:00:00Z"_s;
    auto before = item(u"m3"_s, u"住在老城区，离公司走路十分钟"_s, fact);
    before.validUntil = u"2026-10-01"_s;
    auto frozen = item(u"m4"_s, u"最近可能在戒咖啡：连着三次都点了茶，也说过晚上睡不好"_s, inf);
    frozen.frozen = true;
    MemoryBundle bundle;
    bundle.items = {item(u"m1"_s, u"喜欢清静的地方，人多会累"_s, pref),
                    moved,
                    frozen,
                    before,
                    item(u"m5"_s, u"故事里养了一只叫墨墨的猫"_s, canon),
                    item(u"m6"_s,
                         u"说过一段很长的经历：大学毕业那年先去了南方，在一家小书店做了两年，认识了现在最好的朋友；"
                         u"后来书店关了，才回到江边这座城市，重新读书、找工作，也慢慢学会了一个人做饭。"_s,
                         fact),
                    item(u"m7"_s, u"Prefers short answers in English when talking about code"_s, pref)};
    bundle.candidates = {{u"c1"_s, u"下个月要搬家"_s, u"你在对话里这样说过"_s, u"全部"_s},
                         {u"c2"_s, u"不喜欢别人催"_s, u"昨天提到两次，都说「别催」"_s, u"聊天与建议"_s}};
    bundle.chapters = {{.id = u"ch1"_s,
                        .n = 1,
                        .title = u"认识你的开始"_s,
                        .date = u"2026-03-08"_s,
                        .real = u"你陆续说了几件关于自己的事。"_s,
                        .story = u"故事从几句闲谈开始，慢慢有了你的样子。"_s,
                        .evidence = {u"喜欢清静的地方，人多会累"_s, u"住在江北，周末坐轻轨出门"_s},
                        .pending = true},
                       {.id = u"ch2"_s,
                        .n = 2,
                        .title = u"搬到江北"_s,
                        .date = u"2026-10-01"_s,
                        .real = u"搬了家。"_s,
                        .story = u"窗外从巷子变成了江。"_s,
                        .evidence = {},
                        .pending = false}};
    return bundle;
}

MemoryHistoryResp history(bool revision = true) {
    MemoryHistoryResp history;
    if (revision)
        history.revision = u"r3"_s;
    history.memoryId = u"m1"_s;
    history.current = u"喜欢清静的地方，人多会累"_s;
    history.entries = {{.id = u"h1"_s,
                        .memoryId = u"m1"_s,
                        .previous = u"喜欢安静"_s,
                        .next = u"不喜欢人多"_s,
                        .source = u"你的纠正"_s,
                        .at = u"2026-05-01T09:00:00Z"_s},
                       {.id = u"h2"_s,
                        .memoryId = u"m1"_s,
                        .previous = u"不喜欢人多"_s,
                        .next = u"喜欢清静的地方，人多会累"_s,
                        .source = u"你的纠正"_s,
                        .at = u"2026-06-11T09:00:00Z"_s}};
    history.canRevert = true;
    return history;
}

/// The same after its last change was taken back.
MemoryHistoryResp revertedHistory() {
    MemoryHistoryResp after = history();
    after.revision = u"r4"_s;
    after.entries.push_back({.id = u"h3"_s,
                             .memoryId = u"m1"_s,
                             .previous = after.current,
                             .next = u"不喜欢人多"_s,
                             .source = u"改回上一版"_s,
                             .at = u"2026-06-12T09:00:00Z"_s});
    after.current = u"不喜欢人多"_s;
    return after;
}

/// The ledger's page, whatever the service says of it.
Scene page(std::function<void(GalleryService &)> serve, Scene more = {}) {
    return [serve = std::move(serve), more = std::move(more)](GalleryStage &stage) {
        Fixtures::serve(stage.service(), 5);
        serve(stage.service());
        Fixtures::toShell(stage);
        stage.then([&stage] { stage.scene().navigation()->openMemory(); });
        stage.until(u"the page"_s, [&stage] { return stage.visibleItem(u"MemoryPage"_s) != nullptr; });
        if (more)
            more(stage);
    };
}

/// The ledger with something in it.
Scene loaded(Scene more = {}, const MemoryBundle &bundle = some()) {
    return page(
        [bundle](GalleryService &service) {
            service.reply(path, bundle);
            service.reply(historyPath, history());
        },
        [more = std::move(more)](GalleryStage &stage) {
            stage.until(u"the ledger"_s, [&stage] { return model(stage).state() == MemoryLedgerModel::State::Loaded; });
            if (more)
                more(stage);
        });
}

Scene act(std::function<void(GalleryStage &)> what) {
    return loaded([what = std::move(what)](GalleryStage &stage) { stage.then([&stage, what] { what(stage); }); });
}

/// The sheet of a correction, with what the service says when it is saved.
Scene correcting(std::function<void(GalleryService &)> serve, bool save,
                 const QString &text = u"人多会累，喜欢清静"_s) {
    return loaded([serve = std::move(serve), save, text](GalleryStage &stage) {
        stage.then([&stage, serve] {
            serve(stage.service());
            model(stage).edit(u"m1"_s);
        });
        using enum MemoryCorrectionModel::State;
        stage.until(u"the history"_s, [&stage] { return model(stage).correction()->state() != Loading; });
        stage.then([&stage, text] {
            if (!text.isEmpty())
                model(stage).correction()->setText(text);
        });
        if (!save)
            return;
        stage.then([&stage] { model(stage).correction()->save(); });
        stage.until(u"what became of it"_s, [&stage] { return model(stage).correction()->state() != Saving; });
    });
}

Scene reading(std::function<void(GalleryService &)> serve, bool revert = false) {
    return loaded([serve = std::move(serve), revert](GalleryStage &stage) {
        stage.then([&stage, serve] {
            serve(stage.service());
            model(stage).showHistory(u"m1"_s);
        });
        using enum MemoryHistoryModel::State;
        if (!revert)
            return;
        stage.until(u"the history"_s, [&stage] { return model(stage).history()->state() == Loaded; });
        stage.then([&stage] {
            stage.service().reply(historyPath, revertedHistory());
            model(stage).history()->revert();
        });
        stage.until(u"what became of it"_s, [&stage] {
            return model(stage).history()->state() == Loaded && !model(stage).history()->message().isEmpty();
        });
    });
}

/// The sheet of an import, up to what was found.
Scene importing(std::function<void(GalleryService &)> serve, Scene more = {}) {
    return loaded([serve = std::move(serve), more = std::move(more)](GalleryStage &stage) {
        stage.then([&stage, serve] {
            serve(stage.service());
            model(stage).importer()->setText(u"我下个月要搬家\n我不喜欢别人催\n我在学做饭"_s);
            if (auto *sheet = stage.visibleItem(u"MemoryPage"_s))
                QMetaObject::invokeMethod(sheet, "beginImport");
        });
        if (more)
            more(stage);
    });
}

Scene scanned(std::function<void(GalleryService &)> serve, Scene more = {}) {
    return importing(std::move(serve), [more = std::move(more)](GalleryStage &stage) {
        stage.then([&stage] { model(stage).importer()->scan(); });
        stage.until(u"the end of the scan"_s, [&stage] { return !model(stage).importer()->scanning(); });
        if (more)
            more(stage);
    });
}

void serveFound(GalleryService &service) {
    service.reply(u"/api/app/memory/extract"_s,
                  MemoryService::ExtractResp{.candidates = {{u"c1"_s, u"下个月要搬家"_s, u"你这样写了"_s, u"全部"_s},
                                                            {u"c2"_s, u"不喜欢别人催"_s, u"你这样写了"_s, u"聊天"_s},
                                                            {u"c3"_s, u"在学做饭"_s, u"你这样写了"_s, u"全部"_s}},
                                             .pipCharged = 2,
                                             .balance = 940,
                                             .skipped = {}});
}

void pickTwo(GalleryStage &stage) {
    stage.then([&stage] {
        model(stage).importer()->pick(u"c1"_s, true);
        model(stage).importer()->pick(u"c3"_s, true);
    });
}

} // namespace

QList<GalleryScene> MemoryScenes::ledger() {
    const auto forgotten = loaded([](GalleryStage &stage) {
        stage.then([&stage] {
            stage.service().reply(u"/api/app/memory/forget"_s, MemoryService::ForgetResp{some().items[0]});
            model(stage).forget(u"m1"_s);
        });
        stage.until(u"the banner"_s, [&stage] { return !model(stage).undoText().isEmpty(); });
    });
    const auto busy = act([](GalleryStage &stage) {
        stage.service().stall(u"/api/app/memory/freeze"_s);
        model(stage).setFrozen(u"m1"_s, true);
    });
    const auto confirmed = loaded([](GalleryStage &stage) {
        stage.then([&stage] {
            MemoryService::ConfirmResp answer;
            answer.item = item(u"m9"_s, u"下个月要搬家"_s, MemoryTruth::fact);
            answer.supersededContent = u"住在江北，周末坐轻轨出门"_s;
            stage.service().reply(u"/api/app/memory/candidate/confirm"_s, answer);
            model(stage).setFilter(MemoryLedgerModel::Filter::Waiting);
            model(stage).confirm(u"c1"_s);
        });
        stage.until(u"the banner"_s, [&stage] { return !model(stage).banner().isEmpty(); });
    });
    MemoryBundle many;
    for (int at = 0; at < 10'000; ++at)
        many.items.push_back(item(u"m%1"_s.arg(at), u"第 %1 条：喜欢在江边走一走"_s.arg(at), MemoryTruth::pref));
    return {
        {u"memory"_s, loaded()},
        {u"memory-smallest"_s, loaded(), {920, 600}},
        {u"memory-loading"_s, page([](GalleryService &service) { service.stall(path); })},
        {u"memory-failed"_s,
         page([](GalleryService &service) { service.refuse(path, 500, u"internal"_s, u"稍后再试。"_s); })},
        {u"memory-empty"_s, loaded({}, MemoryBundle{})},
        {u"memory-none-found"_s, act([](GalleryStage &stage) { model(stage).find(u"没有的"_s); })},
        {u"memory-found"_s, act([](GalleryStage &stage) { model(stage).find(u"江"_s); })},
        {u"memory-many"_s, loaded({}, many)},
        {u"memory-busy"_s, busy},
        {u"memory-forgotten"_s, forgotten},
        {u"memory-superseded"_s,
         act([](GalleryStage &stage) { model(stage).setFilter(MemoryLedgerModel::Filter::Superseded); })},
        {u"memory-waiting"_s,
         act([](GalleryStage &stage) { model(stage).setFilter(MemoryLedgerModel::Filter::Waiting); })},
        {u"memory-confirmed"_s, confirmed},
        {u"memory-chapters"_s,
         act([](GalleryStage &stage) { model(stage).setFilter(MemoryLedgerModel::Filter::Chapters); })},
    };
}

QList<GalleryScene> MemoryScenes::sheets() {
    const auto nothing = [](GalleryService &) {
    };
    const QString correct = u"/api/app/memory/correct"_s;
    const QString revert = u"/api/app/memory/revert"_s;
    return {
        {u"correction"_s, correcting(nothing, false)},
        {u"correction-untouched"_s, correcting(nothing, false, {})},
        {u"correction-without-revision"_s,
         correcting([](GalleryService &service) { service.reply(historyPath, history(false)); }, false)},
        {u"correction-unreadable"_s,
         correcting([](GalleryService &service) { service.refuse(historyPath, 500, u"x"_s, u"服务开小差了。"_s); },
                    false)},
        {u"correction-saved"_s, correcting(
                                    [correct](GalleryService &service) {
                                        service.reply(correct, MemoryService::CorrectResp{u"喜欢清静的地方，人多会累"_s,
                                                                                          u"r4"_s});
                                    },
                                    true)},
        {u"correction-conflict"_s,
         correcting([correct](GalleryService &service) { service.refuse(correct, 409, u"conflict"_s, u"冲突"_s); },
                    true)},
        {u"correction-unknown"_s,
         correcting([correct](GalleryService &service) { service.refuse(correct, 500, u"x"_s, u"x"_s); }, true)},
        {u"history"_s, reading(nothing)},
        {u"history-loading"_s, reading([](GalleryService &service) { service.stall(historyPath); })},
        {u"history-unreadable"_s,
         reading([](GalleryService &service) { service.refuse(historyPath, 500, u"x"_s, u"服务开小差了。"_s); })},
        {u"history-reverted"_s, reading(
                                    [revert](GalleryService &service) {
                                        service.reply(revert,
                                                      MemoryService::RevertResp{u"不喜欢人多"_s, true, {}, u"r4"_s});
                                    },
                                    true)},
        {u"history-revert-unknown"_s,
         reading([revert](GalleryService &service) { service.refuse(revert, 500, u"x"_s, u"x"_s); }, true)},
    };
}

QList<GalleryScene> MemoryScenes::imports() {
    const auto nothing = [](GalleryService &) {
    };
    const QString extract = u"/api/app/memory/extract"_s;
    const auto done = [](GalleryService &service) {
        serveFound(service);
        MemoryService::ConfirmResp answer;
        answer.item = item(u"m9"_s, u"下个月要搬家"_s, MemoryTruth::fact);
        answer.supersededContent = u"住在江北"_s;
        service.reply(u"/api/app/memory/candidate/confirm"_s, answer);
    };
    const auto write = [](GalleryStage &stage) {
        pickTwo(stage);
        stage.then([&stage] {
            model(stage).importer()->goToConfirm();
            model(stage).importer()->write();
        });
        stage.until(u"the end"_s,
                    [&stage] { return model(stage).importer()->step() == MemoryImportModel::Step::Done; });
    };
    return {
        {u"import-source"_s, importing(nothing)},
        {u"import-scan-failed"_s,
         scanned([extract](GalleryService &service) { service.refuse(extract, 500, u"x"_s, u"x"_s); })},
        {u"import-nothing"_s, scanned([extract](GalleryService &service) {
             service.reply(extract, MemoryService::ExtractResp{{}, 1, 941, u"没有值得记的。"_s});
         })},
        {u"import-review"_s, scanned(serveFound, pickTwo)},
        {u"import-confirm"_s, scanned(serveFound,
                                      [](GalleryStage &stage) {
                                          pickTwo(stage);
                                          stage.then([&stage] { model(stage).importer()->goToConfirm(); });
                                      })},
        {u"import-done"_s, scanned(done, write)},
        {u"import-none-written"_s, scanned(
                                       [](GalleryService &service) {
                                           serveFound(service);
                                           service.refuse(u"/api/app/memory/candidate/confirm"_s, 500, u"x"_s, u"x"_s);
                                       },
                                       write)},
    };
}

QList<GalleryScene> MemoryScenes::extraction() {
    /// A conversation whose memories are asked for, from the sheet on.
    const auto of = [](std::function<void(GalleryService &)> serve, bool start, Scene more = {}) {
        return Scene([serve = std::move(serve), start, more = std::move(more)](GalleryStage &stage) {
            Fixtures::toChat(stage, Fixtures::conversation({Fixtures::question(u"q"_s, u"我下个月要搬家了。"_s),
                                                            Fixtures::answer(u"a"_s, u"搬到哪里？"_s, u"q"_s)}));
            serve(stage.service());
            stage.until(u"its messages"_s, [&stage] { return stage.scene().chat()->isOpen(); });
            stage.then([&stage, start] {
                if (start)
                    return stage.scene().chat()->extraction()->extract();
                if (auto *page = stage.visibleItem(u"ChatPage"_s))
                    QMetaObject::invokeMethod(page, "beginExtraction");
            });
            if (more)
                more(stage);
        });
    };
    const auto found = [](GalleryStage &stage) {
        stage.until(u"the candidates"_s, [&stage] { return stage.scene().chat()->extraction()->isOpen(); });
    };
    const auto answered = [found](GalleryStage &stage) {
        found(stage);
        stage.then([&stage] { stage.scene().chat()->extraction()->confirm(u"c1"_s); });
        stage.until(u"the report"_s, [&stage] { return !stage.scene().chat()->extraction()->report().isEmpty(); });
    };
    const auto confirm = [](GalleryService &service) {
        serveFound(service);
        MemoryService::ConfirmResp answer;
        answer.supersededContent = u"住在江北"_s;
        service.reply(u"/api/app/memory/candidate/confirm"_s, answer);
    };
    return {{u"extraction"_s, of([](GalleryService &) {}, false)},
            {u"extraction-found"_s, of(serveFound, true, found)},
            {u"extraction-confirmed"_s, of(confirm, true, answered)}};
}

QList<GalleryScene> MemoryScenes::all() {
    return ledger() + sheets() + imports() + extraction();
}

} // namespace lmp
