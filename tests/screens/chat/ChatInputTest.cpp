#include "conversation/ConversationTexts.h"
#include "core/PlainLabel.h"

#include "ChatModelFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;
using State = MessageListModel::State;

/// Where what is typed in a window is kept, and which conversation it stays with.
class ChatInputTest : public ChatModelFixture {};

TEST_F(ChatInputTest, WhatIsTypedStaysWithItsConversation) {
    load(u"a"_s);
    chat->setInput(u"给 a"_s);
    load(u"b"_s);
    EXPECT_EQ(chat->input(), QString());
    chat->setInput(u"给 b"_s);
    server.on("/api/app/conversation?id=c", StubServer::reply(500, R"({"reason":"稍后"})"));
    load(u"c"_s);
    EXPECT_EQ(chat->loadError(), u"稍后"_s);
    EXPECT_FALSE(chat->isOpen());
    chat->setInput(u"给 c"_s);
    EXPECT_FALSE(chat->send());
    EXPECT_EQ(chat->inputHeldReason(), ConversationTexts::nothingOpen());
    chat->begin();
    EXPECT_EQ(chat->input(), QString()) << "what was typed for one that could not be opened is not a fresh one's";
    chat->setInput(u"新的"_s);
    chat->begin(true);
    EXPECT_EQ(chat->input(), QString());
    chat->setInput(u"无痕"_s);
    EXPECT_TRUE(await(chat->preserve()));
    EXPECT_TRUE(chat->localInputSaved()) << "of an incognito conversation nothing is to be kept";
    server.on("/api/app/conversation?id=c", StubServer::reply(200, conversation("c", message("c1"))));

    // After a restart.
    chat.reset();
    open();
    for (const auto &[id, typed] : std::initializer_list<std::pair<QString, QString>>{
             {u"b"_s, u"给 b"_s}, {u"c"_s, u"给 c"_s}, {u"a"_s, u"给 a"_s}}) {
        load(id);
        EXPECT_EQ(chat->input(), typed);
    }
    chat->begin();
    EXPECT_EQ(chat->input(), u"新的"_s);
    ASSERT_TRUE(chat->send());
    EXPECT_TRUE(eventually([this] { return chat->isIdle(); }));
    settleFiles();
    chat.reset();
    open();
    chat->begin();
    EXPECT_EQ(chat->input(), QString()) << "what was sent does not come back";
}

TEST_F(ChatInputTest, WhatIsTypedIsOnDiskAfterAPause) {
    chat->setInput(u"先说"_s);
    chat->begin();
    EXPECT_EQ(chat->input(), u"先说"_s) << "typed before anything was open";
    load(u"a"_s);
    chat->setInput(u"没说完"_s);
    clock.advance(ComposerInputs::typingPause);
    const auto onDisk = [this] {
        QStringList texts;
        for (const auto &entry : ConversationInputDraftStore(support).list(*user)->entries)
            texts.push_back(entry.input.text);
        texts.sort();
        return texts;
    };
    EXPECT_TRUE(eventually([&] { return onDisk() == QStringList{u"先说"_s, u"没说完"_s}; }));
}

TEST_F(ChatInputTest, WhatAnotherWindowHasOpenIsNotLeftBehind) {
    chat->begin();
    chat->setInput(u"这个窗口"_s);
    EXPECT_TRUE(await(chat->preserve()));
    ChatModel other(services());
    await(other.preserve());
    settle();
    other.begin();
    EXPECT_EQ(other.input(), QString());
}

TEST_F(ChatInputTest, TwoWindowsAndOneInput) {
    const ConversationInputDraftStore store(support);
    const auto onDisk = [&](const QString &id) {
        const auto entry = store.read(*user, id).value_or(std::nullopt);
        return entry ? entry->input.text : QString();
    };
    load(u"a"_s);
    chat->setInput(u"早先"_s);
    ASSERT_TRUE(await(chat->preserve()));
    for (const bool mine : {true, false}) {
        SCOPED_TRACE(mine);
        // The other window, with an attachment and a target that must not get lost on the way.
        auto theirs = *store.read(*user, u"a"_s).value();
        theirs.input.text = u"那边"_s;
        theirs.input.parts.resize(1);
        theirs.input.selection.emplace().workId = u"w"_s;
        const auto written = store.save(*user, theirs, theirs.writeId, clock.now());
        ASSERT_TRUE(written);

        chat->setInput(u"这边"_s);
        EXPECT_TRUE(await(chat->preserve())) << "kept beside";
        EXPECT_TRUE(chat->inputs()->isConflicted());
        EXPECT_EQ(chat->inputs()->error(), ConversationTexts::inputChangedElsewhere());
        EXPECT_EQ(chat->inputs()->otherText(), u"那边\n（附件 1 个）\n（已选目标）"_s);
        EXPECT_EQ(chat->input(), u"这边"_s);
        EXPECT_EQ(onDisk(u"a"_s), u"那边"_s);

        // Nothing is decided by leaving, nor by a restart.
        chat->setInput(u"这边，又写"_s);
        load(u"b"_s);
        EXPECT_FALSE(chat->inputs()->isConflicted());
        EXPECT_EQ(chat->input() + chat->inputs()->error(), QString());
        chat.reset();
        open();
        load(u"a"_s);
        EXPECT_TRUE(chat->inputs()->isConflicted());
        EXPECT_EQ(chat->input(), u"这边，又写"_s);
        EXPECT_EQ(onDisk(u"a"_s), u"那边"_s);

        mine ? chat->inputs()->keepMine() : chat->inputs()->takeTheirs();
        EXPECT_FALSE(chat->inputs()->isConflicted());
        EXPECT_EQ(chat->input(), mine ? u"这边，又写"_s : u"那边"_s);
        EXPECT_TRUE(await(chat->preserve()));
        settle();
        EXPECT_EQ(onDisk(u"a"_s), chat->input());
        EXPECT_EQ(store.read(*user, u"a"_s).value()->input.parts.size(), mine ? 0 : 1);
        EXPECT_EQ(chat->inputs()->inputDraftWriteId(), store.read(*user, u"a"_s).value()->writeId);
        EXPECT_TRUE(eventually([&] { return store.list(*user)->entries.size() == 1; })) << "the copy beside is gone";
    }

    // What the other window sends is gone here too, as long as nothing was changed here.
    const auto now = *store.read(*user, u"a"_s).value();
    auto nothing = now;
    nothing.input = {};
    ASSERT_TRUE(store.save(*user, nothing, now.writeId, clock.now()));
    load(u"b"_s);
    load(u"a"_s);
    EXPECT_TRUE(eventually([this] { return chat->input().isEmpty(); }));
}

TEST_F(ChatInputTest, WhatTheDiskRefusedFollowsItsAccount) {
    // A lock that cannot be taken.
    QFile::remove(folder.filePath(u"UnsentInput/v1/.lock"_s));
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"UnsentInput/v1/.lock"_s));
    load(u"a"_s);
    chat->setInput(u"秘密"_s);
    EXPECT_FALSE(await(chat->preserve()));
    EXPECT_EQ(chat->inputs()->error(), ConversationTexts::inputNotWritten());
    user = u"u2"_s;
    signIn += u'+';
    chat->recheckAccount();
    load(u"a"_s);
    EXPECT_EQ(chat->input() + chat->inputs()->error(), QString());
    EXPECT_TRUE(eventually([this] { return chat->inputs()->restoredDraftAccount() == u"u2"_s; }));
    EXPECT_FALSE(chat->localInputSaved()) << "a quit would still lose it";
    ASSERT_TRUE(QDir(folder.path()).rmdir(u"UnsentInput/v1/.lock"_s));
    clock.advance(ComposerInputs::typingPause);
    settle();
    clock.advance(ComposerInputs::retryPause);
    EXPECT_TRUE(eventually([this] { return chat->localInputSaved(); }));
    EXPECT_EQ(chat->input(), QString());
    become(u"u1"_s);
    load(u"a"_s);
    EXPECT_EQ(chat->input(), u"秘密"_s);
}

TEST_F(ChatInputTest, WhatCannotMoveStaysWhereItWas) {
    load(u"a"_s);
    chat->setInput(u"短的"_s);
    ASSERT_TRUE(await(chat->preserve()));
    chat->setInput(QString(2'000'001, u'x'));
    EXPECT_FALSE(await(chat->preserve()));
    chat->saveAsNew();
    EXPECT_FALSE(await(chat->preserve()));
    const QDir kept(folder.filePath(u"UnsentInput/v1"_s));
    QByteArray all;
    for (const QString &name : kept.entryList({u"*.json"_s})) {
        QFile file(kept.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        all += file.readAll();
    }
    EXPECT_TRUE(all.contains("短的"));
}

} // namespace lmp
