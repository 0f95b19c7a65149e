#include "screens/gallery/GalleryFixtures.h"

#include "conversation/ChatStreamFrame.h"
#include "conversation/ConversationService.h"
#include "core/AuthAnswers.h"
#include "core/CapabilitiesResponse.h"
#include "screens/shell/WindowApplication.h"
#include "screens/shell/WindowScene.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

void passOne(RootView &root) {
    switch (root.stage()) {
    case RootView::Stage::Migration:
        root.finishMigrationNotice();
        break;
    case RootView::Stage::Onboarding:
        root.finishOnboarding();
        break;
    case RootView::Stage::HandleSetup:
        root.finishHandleSetup();
        break;
    default:
        break;
    }
}

CapabilitiesResponse capabilities() {
    using enum CapabilityLevel;
    return {
        .platform = u"mac"_s,
        .version = 3,
        .features = {
            {.id = u"talk"_s, .label = u"和分身对话"_s, .level = full},
            {.id = u"social"_s, .label = u"消息与联系人"_s, .level = full},
            {.id = u"voice"_s, .label = u"语音房"_s, .level = degraded, .note = u"这个平台上只能听，暂时不能上麦。"_s},
            {.id = u"posts"_s, .label = u"动态"_s, .level = none, .note = u"还没有开放。"_s},
            {.id = u"market"_s, .label = u"市场"_s, .level = none},
            {.id = u"wallet"_s, .label = u"钱包"_s, .level = degraded, .note = u"只能看余额。"_s},
            {.id = u"dev"_s, .label = u"编程助手"_s, .level = full},
            {.id = u"studio"_s, .label = u"工坊"_s, .level = none, .note = u"敬请期待。"_s}}};
}

} // namespace

UserInfo GalleryFixtures::person() {
    return {.id = u"gallery-person"_s,
            .phone = u"13800006666"_s,
            .dialCode = u"+86"_s,
            .username = u"林间晚风"_s,
            .handle = u"linjian"_s};
}

QList<ConversationSummaryDTO> GalleryFixtures::titles(int count) {
    static const QStringList some = {u"周末去哪儿走走"_s,
                                     u"面试前的准备：项目经历怎么讲才不啰嗦，又能让人记住重点"_s,
                                     u"晚饭"_s,
                                     u"帮我改一封写给房东的信"_s,
                                     u"Why is my build slow?"_s,
                                     u"مرحبا، كيف كان يومك؟"_s,
                                     u"睡不着的时候"_s,
                                     u"读书笔记（三）"_s};
    QList<ConversationSummaryDTO> found;
    for (int at = 0; at < count; ++at)
        found.push_back({.id = u"c%1"_s.arg(at), .title = some[at % some.size()], .mode = {}});
    return found;
}

ConvMessageDTO GalleryFixtures::question(const QString &id, const QString &text,
                                         std::optional<ConversationDeliveryState> state) {
    ConvMessageDTO message;
    message.id = id;
    message.role = TalkRole::user;
    message.text = text;
    message.deliveryState = state.value_or(ConversationDeliveryState::submitted);
    return message;
}

ConvMessageDTO GalleryFixtures::answer(const QString &id, const QString &text, const QString &to) {
    ConvMessageDTO message;
    message.id = id;
    message.role = TalkRole::twin;
    message.text = text;
    message.requestId = u"r-"_s + id;
    message.replyToUserMessageId = to;
    return message;
}

UsedMemory GalleryFixtures::memory(const QString &content, const QString &truth) {
    UsedMemory memory;
    memory.content = content;
    memory.truth = truth;
    return memory;
}

ConversationDTO GalleryFixtures::conversation(const QList<ConvMessageDTO> &messages) {
    return named(u"gallery"_s, u"周末去哪儿走走"_s, messages);
}

ConversationDTO GalleryFixtures::named(const QString &id, const QString &title, const QList<ConvMessageDTO> &messages) {
    ConversationDTO conversation;
    conversation.id = id;
    conversation.title = title;
    conversation.messages = messages;
    conversation.revision = 7;
    return conversation;
}

void GalleryFixtures::serve(GalleryService &service, int conversations) {
    service.reply(u"/api/app/auth/me"_s, MeResponse{person()});
    service.reply(u"/api/app/capabilities"_s, capabilities());
    service.reply(u"/api/app/conversations"_s, ConversationService::ListResp{titles(conversations)});
    service.reply(u"/api/app/conversation/sync"_s, ConversationService::SyncResp{.ok = true, .revision = 8});
    service.answer(u"/api/telemetry/events"_s, {.body = "{}"});
    service.answer(u"/downloads/desktop/mac/latest.json"_s, {.status = 404});
}

QByteArrayList GalleryFixtures::reply(const QStringList &deltas, bool done) {
    QByteArrayList events;
    for (const QString &delta : deltas) {
        ChatStreamFrame frame;
        frame.delta = delta;
        events << Json::encode(frame);
    }
    if (done) {
        ChatStreamFrame closing;
        closing.done = true;
        closing.pipCharged = 3;
        closing.balance = 947;
        closing.requestId = u"r-streamed"_s;
        events << Json::encode(closing);
    }
    return events;
}

void GalleryFixtures::toSignIn(GalleryStage &stage) {
    serve(stage.service());
    stage.run({});
    stage.until(u"the sign-in screen"_s, [&stage] { return stage.scene().stage() == WindowScene::Stage::SignedOut; });
}

void GalleryFixtures::toShell(GalleryStage &stage) {
    stage.run(u"gallery"_s);
    passBy(stage);
    // The conversations of the list are titles and nothing more.
    stage.then([&stage] { stage.program().application().search().holdBack(&stage, true); });
}

void GalleryFixtures::passBy(GalleryStage &stage) {
    stage.until(u"the shell"_s, [&stage] {
        if (auto *root = stage.scene().rootView())
            passOne(*root);
        return stage.scene().stage() == WindowScene::Stage::Shell;
    });
    stage.then([&stage] { stage.scene().telemetry()->answer(false); });
    stage.until(u"the list of conversations"_s, [&stage] { return !stage.scene().conversations()->loading(); });
}

void GalleryFixtures::toChat(GalleryStage &stage, const ConversationDTO &conversation) {
    serve(stage.service());
    auto listed = titles(12);
    listed.prepend({.id = conversation.id, .title = conversation.title, .mode = {}});
    stage.service().reply(u"/api/app/conversations"_s, ConversationService::ListResp{listed});
    stage.service().reply(u"/api/app/conversation?id="_s + conversation.id, ConversationService::GetResp{conversation});
    toShell(stage);
    stage.then([&stage, id = conversation.id] { stage.scene().openConversation(id); });
    // Its id is there as soon as it was asked for.
    stage.until(u"the conversation"_s, [&stage, id = conversation.id] {
        return stage.scene().chat()->isOpen() && stage.scene().chat()->conversationId() == id;
    });
}

void GalleryFixtures::ask(GalleryStage &stage, const QString &text) {
    toShell(stage);
    stage.then([&stage, text] {
        stage.scene().startConversation();
        stage.scene().chat()->setInput(text);
        stage.scene().chat()->send();
    });
}

} // namespace lmp
