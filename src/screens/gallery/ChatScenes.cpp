#include "screens/gallery/ChatScenes.h"

#include "conversation/ConversationService.h"
#include "screens/gallery/GalleryFixtures.h"
#include "screens/shell/WindowApplication.h"
#include "screens/shell/WindowScene.h"

#include <QDir>
#include <QFile>
#include <QQuickItem>

namespace lmp {

using namespace Qt::StringLiterals;
using Fixtures = GalleryFixtures;
using Scene = std::function<void(GalleryStage &)>;

namespace {

const QString stream = u"/api/relay/chat/stream"_s;

ChatModel &chat(GalleryStage &stage) {
    return *stage.scene().chat();
}

/// A conversation that is there already.
Scene of(const QList<ConvMessageDTO> &messages, Scene more = {}) {
    return [messages, more = std::move(more)](GalleryStage &stage) {
        Fixtures::toChat(stage, Fixtures::conversation(messages));
        if (more)
            more(stage);
    };
}

Scene replied(const QString &text) {
    return of({Fixtures::question(u"q"_s, u"周末想出去走走，怎么安排好？"_s), Fixtures::answer(u"a"_s, text, u"q"_s)});
}

/// A turn that has ended, however it did.
Scene turn(std::function<void(GalleryService &)> serve, const QString &text = u"周末去哪儿走走？"_s) {
    return [serve = std::move(serve), text](GalleryStage &stage) {
        Fixtures::serve(stage.service(), 5);
        serve(stage.service());
        Fixtures::ask(stage, text);
        stage.until(u"the end of the turn"_s, [&stage] { return chat(stage).isIdle(); });
    };
}

/// A turn that is under way.
Scene underWay(const QStringList &deltas, Scene more = {}) {
    return [deltas, more = std::move(more)](GalleryStage &stage) {
        Fixtures::serve(stage.service(), 5);
        stage.service().stream(stream, Fixtures::reply(deltas, false), false);
        Fixtures::ask(stage, u"给我讲讲江边那条路。"_s);
        stage.until(u"the beginning of the reply"_s, [&stage, count = deltas.isEmpty() ? 1 : 2] {
            return chat(stage).sending() && chat(stage).messages()->rowCount() >= count;
        });
        if (more)
            more(stage);
    };
}

void serveReply(GalleryService &service) {
    service.stream(stream, Fixtures::reply({u"可以去**江边**。"_s, u"早上人少，"_s, u"带上水就好。"_s}), true);
}

const QList<ConvMessageDTO> &withMemories() {
    static const QList<ConvMessageDTO> messages = [] {
        auto reply = Fixtures::answer(u"a"_s, u"你说过喜欢清静，就去江边吧，早一点。"_s, u"q"_s);
        reply.used = {Fixtures::memory(u"喜欢清静的地方，人多会累"_s, u"pref"_s),
                      Fixtures::memory(u"住在江北，周末坐轻轨出门"_s, u"fact"_s),
                      Fixtures::memory(u"最近可能在戒咖啡"_s, u"inf"_s)};
        return QList<ConvMessageDTO>{Fixtures::question(u"q"_s, u"周末去哪儿走走？"_s), reply};
    }();
    return messages;
}

QList<ConvMessageDTO> withFailed() {
    return {Fixtures::question(u"q1"_s, u"第一句，送到了。"_s), Fixtures::answer(u"a1"_s, u"收到。"_s, u"q1"_s),
            Fixtures::question(u"q2"_s, u"这一句没有送到，要不要再试一次？"_s, ConversationDeliveryState::failed)};
}

} // namespace

QList<GalleryScene> ChatScenes::texts() {
    QList<ConvMessageDTO> grouped;
    for (int at = 0; at < 7; ++at) {
        const QString number = QString::number(at);
        grouped << Fixtures::question(u"q"_s + number, at % 2 ? u"嗯。"_s : u"还有呢？再多说一点，不要只说结论。"_s)
                << Fixtures::answer(u"a"_s + number, u"第 %1 点：慢一点也没关系。"_s.arg(at + 1), u"q"_s + number);
    }
    const QString wordy = u"一整段不分行的话，看看能不能在合适的地方折行，标点不要跑到行首。"_s.repeated(8);
    return {{u"chat-markdown"_s, replied(Fixtures::markdown())},
            {u"chat-code"_s, replied(Fixtures::code())},
            {u"chat-table"_s, replied(Fixtures::table())},
            {u"chat-long-word"_s, replied(Fixtures::longWord())},
            {u"chat-right-to-left"_s, replied(Fixtures::rightToLeft())},
            {u"chat-foreign"_s, replied(Fixtures::foreign())},
            {u"chat-many"_s, of(grouped)},
            {u"chat-wordy"_s, of({Fixtures::question(u"q"_s, wordy), Fixtures::answer(u"a"_s, wordy, u"q"_s)})},
            {u"chat-smallest-window"_s, replied(Fixtures::table()), {920, 600}}};
}

QList<GalleryScene> ChatScenes::turns() {
    const auto refused = [](int status, const QString &code) {
        return turn([status, code](GalleryService &service) { service.refuse(stream, status, code, u"余额不足。"_s); });
    };
    const auto cut = turn([](GalleryService &service) {
        // More was promised than comes.
        service.answer(stream, {.contentType = "text/event-stream",
                                .body = "data: " + Fixtures::reply({u"可以去江边，"_s}, false).first() + "\n\n"});
    });
    const auto aborted = turn([](GalleryService &service) {
        service.stream(stream, Fixtures::reply({u"可以去江边，"_s}, false) << R"({"error":"stream_aborted"})", true);
    });
    const auto chargedEmpty =
        turn([](GalleryService &service) { service.stream(stream, Fixtures::reply({}, true), true); });
    const auto notSynced = turn([](GalleryService &service) {
        serveReply(service);
        service.refuse(u"/api/app/conversation/sync"_s, 500, u"internal"_s, u"没有存上。"_s);
    });
    const auto stopped = underWay({u"沿着堤岸往东，"_s, u"先过一座桥，"_s}, [](GalleryStage &stage) {
        stage.then([&stage] { chat(stage).stop(); });
        stage.until(u"the end of the turn"_s, [&stage] { return chat(stage).isIdle(); });
    });
    const auto held = underWay({u"沿着堤岸往东，"_s}, [](GalleryStage &stage) {
        stage.then([&stage] {
            chat(stage).setInput(u"等等，我还想问晚上能不能去"_s);
            chat(stage).send();
        });
    });
    return {{u"chat-replied"_s, turn(serveReply)},
            {u"chat-awaiting"_s, underWay({})},
            {u"chat-streaming"_s,
             underWay({u"沿着堤岸往东，先过一座桥，"_s, u"再走 **两公里**，"_s, u"就能看见\n\n```sh\nls -l"_s})},
            {u"chat-stopped"_s, stopped},
            {u"chat-held"_s, held},
            {u"chat-refused"_s, refused(402, u"pip_insufficient"_s)},
            {u"chat-unconfigured"_s, refused(503, u"relay_unconfigured"_s)},
            {u"chat-cut"_s, cut},
            {u"chat-aborted"_s, aborted},
            {u"chat-charged-empty"_s, chargedEmpty},
            {u"chat-not-synchronised"_s, notSynced}};
}

QList<GalleryScene> ChatScenes::states() {
    const QList<ConvMessageDTO> unknown = {
        Fixtures::question(u"q1"_s, u"这一句断在半路了。"_s, ConversationDeliveryState::unknown),
        Fixtures::answer(u"a1"_s, u"已经收到的半"_s, u"q1"_s)};
    const auto retryFailed = [](GalleryStage &stage) {
        stage.service().refuse(u"/api/app/conversation/retry"_s, 500, u"internal"_s, u"没有成功。"_s);
        stage.then([&stage] { chat(stage).retryMessage(u"q2"_s); });
        stage.until(u"the end of the retry"_s, [&stage] { return chat(stage).isIdle(); });
    };
    const auto retrying = [](GalleryStage &stage) {
        stage.service().stall(u"/api/app/conversation/retry"_s);
        stage.then([&stage] { chat(stage).retryReply(u"a"_s); });
    };
    const auto editing = [](GalleryStage &stage) {
        stage.then([&stage] { chat(stage).restoreMessage(u"q2"_s); });
    };
    const auto occupied = [](GalleryStage &stage) {
        stage.then([&stage] {
            chat(stage).setInput(u"已经写了一半的话"_s);
            chat(stage).restoreMessage(u"q2"_s);
        });
    };
    const auto conflict = [](GalleryStage &stage) {
        stage.service().refuse(u"/api/app/conversation/sync"_s, 409, u"conflict"_s, u"别处有更新。"_s);
        serveReply(stage.service());
        stage.then([&stage] {
            chat(stage).setInput(u"再问一句。"_s);
            chat(stage).send();
        });
        stage.until(u"the conflict"_s, [&stage] { return chat(stage).conflicted(); });
    };
    return {{u"chat-unknown"_s, of(unknown)},
            {u"chat-failed"_s, of(withFailed())},
            {u"chat-retry-running"_s, of(withMemories(), retrying)},
            {u"chat-retry-failed"_s, of(withFailed(), retryFailed)},
            {u"chat-editing-failed"_s, of(withFailed(), editing)},
            {u"chat-box-occupied"_s, of(withFailed(), occupied)},
            {u"chat-conflict"_s, of(withMemories(), conflict)}};
}

QList<GalleryScene> ChatScenes::drafts() {
    // What another window has put into the box of the same conversation.
    const auto conflict = [](GalleryStage &stage) {
        stage.then([&stage] { chat(stage).setInput(u"我这边写的是：周六上午去，午饭前回来。"_s); });
        stage.until(u"the save"_s, [&stage] { return chat(stage).inputs()->inputDraftWriteId().has_value(); });
        stage.then([&stage] {
            auto &application = stage.program().application();
            const QString user = Fixtures::person().id;
            auto entry = application.inputs().read(user, chat(stage).conversationId())->value();
            entry.input.text =
                u"另一个窗口写的：不如周日下午，先看看天气。\n如果下雨就改成去图书馆，记得问一下几点关门。"_s;
            (void)application.inputs().save(user, entry, entry.writeId, application.clock().now());
            chat(stage).setInput(u"我这边写的是：周六上午去，午饭前回来，路上买菜。"_s);
        });
        stage.until(u"the conflict"_s, [&stage] { return chat(stage).inputs()->isConflicted(); });
    };
    const auto inTheWay = [](GalleryStage &stage, const QString &name) {
        QFile file(stage.program().application().support().root() + u'/' + name);
        if (QDir(file.fileName()).removeRecursively() && !file.open(QIODevice::WriteOnly))
            qWarning() << "the folder is not out of the way";
    };
    const auto notKept = [inTheWay](GalleryStage &stage) {
        stage.then([&stage, inTheWay] {
            inTheWay(stage, u"UnsentInput"_s);
            chat(stage).setInput(u"磁盘满了的时候写的一句话"_s);
        });
        stage.until(u"the failure"_s, [&stage] { return !chat(stage).inputs()->error().isEmpty(); });
    };
    const auto unreadable = [inTheWay](GalleryStage &stage) {
        stage.then([&stage, inTheWay] {
            inTheWay(stage, u"UnsentInput"_s);
            inTheWay(stage, u"ConversationDrafts"_s);
            stage.service().refuse(u"/api/app/conversations"_s, 503, u"internal"_s, u"连接超时"_s);
            stage.scene().conversations()->refresh();
        });
        stage.until(u"the notices"_s, [&stage] {
            return !stage.scene().conversations()->notice().isEmpty() &&
                   !stage.scene().conversations()->errorText().isEmpty();
        });
    };
    return {{u"chat-input-conflict"_s, of(withMemories(), conflict)},
            {u"chat-input-not-kept"_s, of(withMemories(), notKept)},
            {u"chat-drafts-unreadable"_s, of(withMemories(), unreadable)}};
}

QList<GalleryScene> ChatScenes::ways() {
    const auto begun = [](bool incognito, bool cheaper) {
        return [incognito, cheaper](GalleryStage &stage) {
            Fixtures::serve(stage.service(), 5);
            Fixtures::toShell(stage);
            stage.then([&stage, incognito, cheaper] {
                stage.scene().startConversation(incognito);
                chat(stage).setCheaperMode(cheaper);
            });
        };
    };
    const auto options = [begun](GalleryStage &stage) {
        begun(false, true)(stage);
        stage.until(u"the page"_s, [&stage] { return stage.visibleItem(u"ChatPage"_s) != nullptr; });
        stage.then([&stage] {
            for (auto *loader : stage.window()->findChildren<QObject *>()) {
                if (loader->property("file").toString() == "ChatOptionsSheet.qml"_L1)
                    QMetaObject::invokeMethod(loader, "open");
            }
        });
    };
    const auto used = [](GalleryStage &stage) {
        stage.until(u"the reply"_s, [&stage] { return stage.visibleItem(u"MessageActions"_s) != nullptr; });
        stage.then([&stage] { chat(stage).deeds()->openUsed(u"a"_s); });
    };
    const auto reasons = [](GalleryStage &stage) {
        stage.until(u"the reply"_s, [&stage] { return stage.visibleItem(u"MessageActions"_s) != nullptr; });
        stage.then([&stage] { chat(stage).deeds()->openReasons(u"a"_s); });
    };
    const auto feedback = [](GalleryStage &stage) {
        stage.service().reply(u"/api/app/feedback"_s, ChatWithTwinView::OkResp{.ok = true});
        stage.then([&stage] { chat(stage).deeds()->like(u"a"_s); });
    };
    const auto link = [](GalleryStage &stage) {
        stage.then([&stage] { chat(stage).deeds()->openLink(QUrl(u"javascript:alert(1)"_s)); });
    };
    const auto notOpened = [](GalleryStage &stage) {
        Fixtures::serve(stage.service(), 5);
        stage.service().refuse(u"/api/app/conversation"_s, 500, u"internal"_s, u"服务器没有读出来，请稍后再试。"_s);
        Fixtures::toShell(stage);
        stage.then([&stage] { stage.scene().openConversation(u"c1"_s); });
        stage.until(u"the failure"_s, [&stage] { return !chat(stage).loadError().isEmpty(); });
    };
    const auto opening = [](GalleryStage &stage) {
        Fixtures::serve(stage.service(), 5);
        stage.service().stall(u"/api/app/conversation"_s);
        Fixtures::toShell(stage);
        stage.then([&stage] { stage.scene().openConversation(u"c1"_s); });
    };
    return {{u"chat-empty"_s, begun(false, false)},
            {u"chat-incognito"_s, begun(true, false)},
            {u"chat-cheaper"_s, begun(false, true)},
            {u"chat-options"_s, options},
            {u"chat-used-chip"_s, of(withMemories())},
            {u"chat-used-sheet"_s, of(withMemories(), used)},
            {u"chat-feedback-reasons"_s, of(withMemories(), reasons)},
            {u"chat-feedback-given"_s, of(withMemories(), feedback)},
            {u"chat-link-refused"_s, of(withMemories(), link)},
            {u"chat-not-opened"_s, notOpened},
            {u"chat-opening"_s, opening}};
}

QList<GalleryScene> ChatScenes::finding() {
    QList<ConvMessageDTO> talk;
    for (int at = 0; at < 12; ++at) {
        const QString number = QString::number(at);
        talk << Fixtures::question(u"q"_s + number, at % 3 ? u"那泡茶的水呢？"_s : u"周末一起喝茶吧。"_s)
             << Fixtures::answer(u"a"_s + number,
                                 u"绿茶 **80 度**就好，红茶要滚水；`茶`要先温杯。\n\n- 茶叶三克\n- 水一百毫升"_s,
                                 u"q"_s + number);
    }
    const auto find = [talk](const QString &text) {
        return of(talk, [text](GalleryStage &stage) {
            stage.until(u"the messages"_s, [&stage] { return chat(stage).messages()->rowCount() > 0; });
            stage.then([&stage, text] {
                chat(stage).find()->begin();
                chat(stage).find()->setText(text);
            });
        });
    };
    const auto everywhere = [talk](const QString &query, bool indexed) {
        return of(talk, [query, indexed](GalleryStage &stage) {
            const auto search = [&stage]() -> ConversationSearch & {
                return stage.program().application().search();
            };
            // The others are not told of: their texts cannot be had.
            if (indexed)
                stage.service().reply(u"/api/app/conversations"_s,
                                      ConversationService::ListResp{{Fixtures::titles(1).first()}});
            stage.until(u"what is read after the first frame"_s,
                        [&stage] { return stage.visibleItem(u"WindowExtras"_s) != nullptr; });
            stage.until(u"the open conversation in the index"_s, [search] { return search().coverage().total > 0; });
            stage.then([&stage] { stage.scene().commands()->run(AppCommands::Command::FindEverywhere); });
            stage.type(query);
            stage.until(u"an answer"_s,
                        [&stage, query] { return query.isEmpty() || !stage.scene().search()->statusText().isEmpty(); });
        });
    };
    return {{u"chat-find"_s, find(u"茶"_s)},
            {u"chat-find-two-words"_s, find(u"水 茶叶"_s)},
            {u"chat-find-nothing"_s, find(u"咖啡"_s)},
            {u"search-indexing"_s, everywhere(u"茶"_s, false)},
            {u"search-empty"_s, everywhere({}, true)},
            {u"search-nothing"_s, everywhere(u"咖啡"_s, false)},
            {u"search-smallest-window"_s, everywhere(u"水"_s, false), {920, 600}}};
}

QList<GalleryScene> ChatScenes::speaking() {
    const auto speak = [](std::function<void(GalleryService &)> serve, bool ends) {
        return of(withMemories(), [serve = std::move(serve), ends](GalleryStage &stage) {
            serve(stage.service());
            stage.until(u"the messages"_s, [&stage] { return chat(stage).messages()->rowCount() > 0; });
            stage.then([&stage] { chat(stage).speech()->toggle(u"a"_s); });
            stage.until(u"the reading"_s, [&stage, ends] {
                return ends ? !chat(stage).speech()->note().isEmpty() : chat(stage).speech()->speaking();
            });
        });
    };
    const auto refuse = [](GalleryService &service) {
        service.refuse(u"/api/tts"_s, 503, u"tts_unavailable"_s, u"没有装。"_s);
    };
    const auto noAudio = [](GalleryService &service) {
        service.reply(u"/api/tts"_s, TTSPlayer::TtsResp{.audio = u"AAAA"_s, .encoding = u"midi"_s, .voice = {}});
    };
    return {{u"speech-preparing"_s, speak([](GalleryService &service) { service.stall(u"/api/tts"_s); }, false)},
            {u"speech-unavailable"_s, speak(refuse, true)},
            {u"speech-not-played"_s, speak(noAudio, true)}};
}

QList<GalleryScene> ChatScenes::all() {
    return texts() + turns() + states() + drafts() + ways() + finding() + speaking();
}

} // namespace lmp
