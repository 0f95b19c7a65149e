#include "screens/gallery/CareScenes.h"

#include "identity/CrisisResourcesService.h"
#include "screens/gallery/GalleryFixtures.h"
#include "screens/shell/WindowScene.h"

#include <QQuickItem>

namespace lmp {

using namespace Qt::StringLiterals;
using Fixtures = GalleryFixtures;

namespace {

/// A reply that says something of the person's safety.
std::function<void(GalleryStage &)> told(const QByteArray &closing, std::function<bool(SafetyModel &)> open) {
    return [closing, open = std::move(open)](GalleryStage &stage) {
        Fixtures::serve(stage.service(), 5);
        stage.service().stream(u"/api/relay/chat/stream"_s,
                               Fixtures::reply({u"我在。"_s, u"先说说现在身边有没有人？"_s}, false) << closing, true);
        Fixtures::ask(stage, u"我撑不下去了。"_s);
        stage.until(u"the card"_s, [&stage, open] { return open(*stage.scene().safety()); });
        stage.until(u"the end of the turn"_s, [&stage] { return stage.scene().chat()->isIdle(); });
    };
}

QByteArray crisis(bool verified, const QByteArray &more = {}, const QByteArray &police = "110") {
    return R"({"done":true,"pipCharged":0,"balance":950,"requestId":"r1",)" + more +
           R"("safety":{"crisis":true,"layer":"acute",
        "region":"CN","assumedRegion":true,"guidance":"听起来你现在很难受。先不用一个人扛着，可以打给愿意听你说的人。",
        "resourcesVerified":)" +
           QByteArray(verified ? "true" : "false") +
           R"(,"resources":[{"label":"心理援助热线","phone":"12356"},{"label":"急救","phone":"120"},
        {"label":"报警","phone":")" +
           police + R"("}]}})";
}

/// The crisis page, from the sign-in screen.
std::function<void(GalleryStage &)> page(std::function<void(GalleryService &)> serve) {
    return [serve = std::move(serve)](GalleryStage &stage) {
        Fixtures::toSignIn(stage);
        serve(stage.service());
        stage.then([&stage] { stage.scene().navigation()->openCrisis(); });
        stage.until(u"the page"_s, [&stage] { return stage.visibleItem(u"CrisisPage"_s) != nullptr; });
    };
}

std::function<void(GalleryStage &)> answered(const CrisisResourcesService::Resp &answer) {
    return [answer](GalleryStage &stage) {
        page([answer](GalleryService &service) { service.reply(u"/api/app/crisis-resources"_s, answer); })(stage);
        stage.until(u"the answer"_s, [&stage] { return stage.scene().crisis()->loaded(); });
    };
}

} // namespace

QList<GalleryScene> CareScenes::all() {
    const auto isCrisis = [](SafetyModel &safety) {
        return safety.crisisOpen();
    };
    const auto isContinuousUse = [](SafetyModel &safety) {
        return safety.continuousUseOpen();
    };
    const CrisisResourcesService::Resp numbers = {
        .region = u"CN"_s,
        .items = {{.name = u"心理援助热线"_s, .phone = u"12356"_s, .note = u"全天，免费，可以不说名字"_s},
                  {.name = u"急救"_s, .phone = u"120"_s, .note = {}},
                  {.name = u"报警"_s, .phone = u"110"_s, .note = {}}},
        .guidance = u"如果现在就有危险，请先打 120 或 110，再告诉身边的人。"_s,
        .verified = true,
        .assumedRegion = true};
    auto unverified = numbers;
    unverified.verified = false;
    const auto failed = [](GalleryStage &stage) {
        page([](GalleryService &service) {
            service.refuse(u"/api/app/crisis-resources"_s, 503, u"unavailable"_s, u"服务暂时不可用。"_s);
        })(stage);
        stage.until(u"the failure"_s, [&stage] { return !stage.scene().crisis()->errorText().isEmpty(); });
    };
    const auto refused = [isCrisis](GalleryStage &stage) {
        told(crisis(true, {}, "110\\u202e;ext=0"), isCrisis)(stage);
        stage.press(u"拨打"_s);
        stage.until(u"the refusal"_s, [&stage] { return !stage.scene().safety()->crisisMessage().isEmpty(); });
    };
    const auto both = [](SafetyModel &safety) {
        return safety.crisisOpen() && safety.continuousUseOpen();
    };
    const auto loading = page([](GalleryService &service) { service.stall(u"/api/app/crisis-resources"_s); });
    return {
        {u"care-crisis-card"_s, told(crisis(true), isCrisis)},
        {u"care-crisis-card-without-numbers"_s, told(crisis(false), isCrisis)},
        {u"care-call-refused"_s, refused},
        {u"care-both-cards"_s,
         told(crisis(true, R"("continuousUse":{"minutes":65,"message":"已经聊了一个多小时了，起来走走，喝口水？"},)"),
              both)},
        {u"care-continuous-use"_s,
         told(R"({"done":true,"pipCharged":3,"balance":950,"requestId":"r1","continuousUse":{"minutes":65,
                  "message":"已经聊了一个多小时了，起来走走，喝口水？我在这里等你。"}})",
              isContinuousUse)},
        {u"care-page"_s, answered(numbers)},
        {u"care-page-unverified"_s, answered(unverified)},
        {u"care-page-failed"_s, failed},
        {u"care-page-loading"_s, loading}};
}

} // namespace lmp
