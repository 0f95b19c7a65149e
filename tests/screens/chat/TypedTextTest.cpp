#include "conversation/ConversationTexts.h"

#include "ChatModelFixture.h"

namespace lmp {

using namespace Qt::StringLiterals;

/// What becomes of what was typed when disks refuse, windows meet and people change.
class TypedTextTest : public ChatModelFixture {
protected:
    /// A file where the folder of `kind` should be.
    void setDisk(const QString &kind, bool works) {
        FileThread::finish();
        const QString place = folder.filePath(kind);
        if (works) {
            ASSERT_TRUE(QFile::remove(place));
            return;
        }
        ASSERT_TRUE(QDir(place).removeRecursively());
        ASSERT_TRUE(QFile(place).open(QIODevice::WriteOnly));
    }
    QStringList unsent(const QString &id) const {
        FileThread::finish();
        QStringList texts;
        for (const auto &entry : store.list(*user)->entries) {
            if (store.originalId(entry.id) == id)
                texts.push_back(entry.input.text);
        }
        texts.sort();
        return texts;
    }
    std::optional<ConversationDTO> draft(const QString &id) const {
        FileThread::finish();
        const auto entry = ConversationDraftCache(support).read(user, id).value_or(std::nullopt);
        return entry ? std::optional(entry->snapshot) : std::nullopt;
    }
    /// Another window has put `text` in the place of what stands unsent in `id`.
    void writeElsewhere(const QString &id, const QString &text) {
        FileThread::finish();
        auto entry = store.read(*user, id).value().value_or(ConversationInputDraftStore::Entry());
        entry.id = id;
        entry.title = u"t"_s;
        entry.input.text = text;
        ASSERT_TRUE(store.save(*user, entry, entry.writeId, clock.now()));
    }
    void meet(const QString &mine, const QString &theirs) {
        load(u"a"_s);
        chat->setInput(u"早先"_s);
        ASSERT_TRUE(await(chat->preserve()));
        writeElsewhere(u"a"_s, theirs);
        chat->setInput(mine);
        ASSERT_TRUE(await(chat->preserve()));
        ASSERT_TRUE(chat->inputs()->isConflicted());
    }
    void turnClock(std::chrono::milliseconds by) {
        settle();
        clock.advance(by);
        settle();
        FileThread::finish();
        settle();
    }

    ConversationInputDraftStore store{support};
    const QString drafts = u"ConversationDrafts"_s;
};

TEST_F(TypedTextTest, WhatIsSentLeavesItsFileWhenItsMessageIsSafe) {
    for (const bool byTheService : {false, true}) {
        SCOPED_TRACE(byTheService);
        load(byTheService ? u"a"_s : u"b"_s);
        const QString id = chat->conversationId();
        chat->setInput(u"在吗"_s);
        ASSERT_TRUE(await(chat->preserve()));
        setDisk(drafts, false);
        holdStream();
        ASSERT_TRUE(chat->send());
        EXPECT_EQ(chat->input() + chat->inputs()->error(), QString());
        EXPECT_TRUE(eventually([this] { return chat->notice() == ConversationTexts::notKept(); }));
        EXPECT_EQ(unsent(id), QStringList{u"在吗"_s});

        // What is typed next is kept beside it, and so is what is typed after a restart of the turn.
        chat->setInput(u"还有"_s);
        EXPECT_FALSE(await(chat->preserve()));
        EXPECT_EQ(unsent(id), (QStringList{u"在吗"_s, u"还有"_s}));
        if (byTheService) {
            say({delta("好"), done});
            EXPECT_TRUE(eventually([this] { return chat->isIdle() && !chat->localOnly(); }));
        } else {
            setDisk(drafts, true);
            turnClock(LeftConversations::retryPause);
            EXPECT_EQ(chat->notice(), ConversationTexts::notSynchronised());
            ASSERT_TRUE(draft(id));
            EXPECT_EQ(draft(id)->messages.last().text, u"在吗"_s);
            chat->stop();
        }
        EXPECT_TRUE(eventually([&] { return unsent(id) == QStringList{u"还有"_s}; }));
        if (byTheService)
            setDisk(drafts, true);
        chat->setInput({});
        settleFiles();
    }
}

TEST_F(TypedTextTest, WhatIsSentTwiceOnARefusingDiskIsThereTwice) {
    load(u"a"_s);
    setDisk(drafts, false);
    answer({done});
    server.on(sync, StubServer::reply(500, "{}"));
    for (const QString &text : {u"一"_s, u"二"_s, u"三"_s}) {
        chat->setInput(text);
        EXPECT_FALSE(await(chat->preserve()) && chat->messages()->rowCount() > 1);
        ASSERT_TRUE(chat->send());
        ASSERT_TRUE(eventually([this] { return chat->isIdle(); }));
    }
    settle();
    EXPECT_EQ(unsent(u"a"_s), (QStringList{u"一"_s, u"三"_s, u"二"_s}));
    setDisk(drafts, true);
    settleFiles();
    EXPECT_EQ(unsent(u"a"_s), QStringList());
    EXPECT_EQ(draft(u"a"_s)->messages.size(), 4);
}

TEST_F(TypedTextTest, WhatIsLeftOnARefusingDiskIsNotLost) {
    server.on(sync, StubServer::reply(500, "{}"));
    load(u"a"_s);
    setDisk(drafts, false);
    turn(u"在吗"_s);
    load(u"b"_s);
    const QString left = ConversationTexts::leftNotKept({u"ta"_s});
    EXPECT_TRUE(eventually([&] { return chat->notice().contains(left); }));
    EXPECT_FALSE(chat->localInputSaved());
    EXPECT_FALSE(await(chat->preserve())) << "a quit asks";
    user = u"u2"_s;
    signIn += u'+';
    chat->recheckAccount();
    EXPECT_EQ(chat->notice(), QString()) << "nobody else's business";
    EXPECT_FALSE(chat->localInputSaved());
    load(u"a"_s);
    EXPECT_EQ(chat->messages()->rowCount(), 1);

    user = u"u1"_s;
    signIn += u'+';
    chat->recheckAccount();
    load(u"a"_s);
    ASSERT_EQ(chat->messages()->rowCount(), 3) << "taken back, newer than what the disk or the service has";
    EXPECT_EQ(text(1), u"在吗"_s);
    load(u"b"_s);
    setDisk(drafts, true);
    turnClock(LeftConversations::retryPause);
    EXPECT_TRUE(eventually([this] { return chat->localInputSaved(); }));
    EXPECT_FALSE(chat->notice().contains(left));
    ASSERT_TRUE(draft(u"a"_s));
    EXPECT_EQ(draft(u"a"_s)->messages.size(), 3);
}

TEST_F(TypedTextTest, AReplyIsKeptWhileItGrows) {
    load(u"a"_s);
    holdStream();
    chat->setInput(u"在吗"_s);
    ASSERT_TRUE(chat->send());
    say({delta("一"), delta("半")});
    ASSERT_TRUE(eventually([this] { return text(-1) == u"一半"_s; }));
    turnClock(LeftConversations::retryPause);
    EXPECT_TRUE(chat->sending());
    ASSERT_EQ(draft(u"a"_s)->messages.size(), 3);
    EXPECT_EQ(draft(u"a"_s)->messages.last().text, u"一半"_s);
}

TEST_F(TypedTextTest, WhatIsTypedBeforeItIsKnownWhoTypesGoesWithThem) {
    become(std::nullopt);
    chat->begin();
    const QString id = chat->conversationId();
    holdStream();
    chat->setInput(u"在吗"_s);
    ASSERT_TRUE(chat->send());
    say({delta("好")});
    chat->setInput(u"还有"_s);
    EXPECT_FALSE(await(chat->preserve()));
    EXPECT_FALSE(chat->inputs()->error().isEmpty());
    user = u"u1"_s;
    chat->recheckAccount();
    EXPECT_EQ(chat->conversationId(), id);
    EXPECT_EQ(chat->input(), u"还有"_s);
    EXPECT_TRUE(await(chat->preserve()));
    EXPECT_EQ(unsent(id), QStringList{u"还有"_s});
    say({done});
    EXPECT_TRUE(eventually([this] { return chat->isIdle(); }));
    EXPECT_EQ(state(0), MessageListModel::State::Delivered) << "the turn has gone on";

    // Of another sign-in it is nobody's.
    become(std::nullopt);
    chat->setInput(u"谁的"_s);
    become(u"u1"_s);
    chat->begin();
    EXPECT_EQ(chat->input(), QString());
}

TEST_F(TypedTextTest, ACopyBesideBelongsToItsWindow) {
    meet(u"这边"_s, u"那边"_s);
    ChatModel other(services());
    ASSERT_TRUE(await(other.preserve()));
    other.load(u"a"_s);
    ASSERT_TRUE(eventually([&] { return !other.loading(); }));
    EXPECT_EQ(other.input(), u"那边"_s);
    EXPECT_FALSE(other.inputs()->isConflicted());
    other.setInput(u"那边，又写"_s);
    ASSERT_TRUE(await(other.preserve()));
    chat->setInput(u"这边，又写"_s);
    ASSERT_TRUE(await(chat->preserve()));
    EXPECT_EQ(unsent(u"a"_s), (QStringList{u"这边，又写"_s, u"那边，又写"_s}));
    other.setInput({});
    ASSERT_TRUE(await(other.preserve()));

    // Once its window is gone, the copy is there for the next one.
    chat.reset();
    open();
    load(u"a"_s);
    EXPECT_EQ(chat->input(), u"这边，又写"_s);
}

TEST_F(TypedTextTest, SendingInAConflictLeavesTheOtherText) {
    meet(u"这边"_s, u"那边"_s);
    ASSERT_TRUE(chat->send());
    EXPECT_EQ(chat->input(), u"那边"_s) << "what is left to be sent";
    EXPECT_FALSE(chat->inputs()->isConflicted());
    EXPECT_TRUE(eventually([this] { return chat->isIdle(); }));
    settleFiles();
    EXPECT_EQ(unsent(u"a"_s), QStringList{u"那边"_s});
}

TEST_F(TypedTextTest, AChoiceCanBeTakenBack) {
    meet(u"这边"_s, u"那边"_s);
    chat->setInput({});
    chat->inputs()->keepMine();
    EXPECT_TRUE(chat->inputs()->isConflicted()) << "nothing never takes the place of something";
    chat->setInput(u"这边"_s);
    for (const bool mine : {true, false}) {
        SCOPED_TRACE(mine);
        EXPECT_FALSE(chat->inputs()->hasGivenUp());
        mine ? chat->inputs()->keepMine() : chat->inputs()->takeTheirs();
        settleFiles();
        EXPECT_EQ(unsent(u"a"_s), QStringList{mine ? u"这边"_s : u"那边"_s});
        ASSERT_TRUE(chat->inputs()->hasGivenUp());
        chat->inputs()->takeBack();
        EXPECT_EQ(chat->input(), mine ? u"那边"_s : u"这边"_s);
        settleFiles();
        EXPECT_EQ(unsent(u"a"_s), QStringList{chat->input()});
        chat->inputs()->forgetGivenUp();
        if (mine)
            meet(u"这边"_s, u"那边"_s);
    }
}

TEST_F(TypedTextTest, TheLastFreshInputIsTakenOverFirst) {
    QStringList typed;
    for (int number = 0; number < 12; ++number) {
        typed.push_front(QString::number(number));
        ConversationInputDraftStore::Entry entry;
        entry.id = u"fresh%1"_s.arg(number * 7 % 12);
        entry.input.text = typed.front();
        ASSERT_TRUE(store.save(*user, entry, {}, clock.now().addSecs(number)));
    }
    chat.reset();
    open();
    for (const QString &text : std::as_const(typed)) {
        chat->begin(true);
        chat->begin();
        EXPECT_EQ(chat->input(), text);
        chat->setInput({});
    }
}

TEST_F(TypedTextTest, ADraftThatCannotBeReadIsMentioned) {
    ConversationDTO snapshot;
    snapshot.id = u"a"_s;
    ASSERT_TRUE(ConversationDraftCache(support).save(user, snapshot, {}, clock.now()));
    const QDir kept(folder.filePath(u"ConversationDrafts/v1"_s));
    QFile file(kept.filePath(kept.entryList({u"*.json"_s}).value(0)));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("{");
    file.close();
    load(u"a"_s);
    EXPECT_EQ(chat->notice(), ConversationTexts::draftsUnreadable());
    load(u"b"_s);
    EXPECT_EQ(chat->notice(), QString());
}

TEST_F(TypedTextTest, WhereOneWasTypingIsOpenAfterARestart) {
    const auto restart = [this] {
        chat.reset();
        open();
        chat->goOn();
        EXPECT_TRUE(eventually([this] { return chat->inputs()->isRestored() && !chat->loading(); }));
        settle();
    };
    chat->begin();
    chat->setInput(u"新的半句"_s);
    settleFiles();
    clock.advance(std::chrono::seconds(1));
    load(u"a"_s);
    chat->setInput(u"半句"_s);
    settleFiles();
    restart();
    EXPECT_EQ(chat->conversationId() + chat->input(), u"a半句"_s);
    EXPECT_TRUE(chat->isOpen());

    clock.advance(std::chrono::seconds(1));
    chat->begin();
    EXPECT_EQ(chat->input(), u"新的半句"_s);
    chat->setInput(u"新的一句"_s);
    settleFiles();
    restart();
    EXPECT_EQ(chat->title() + chat->input(), u"新对话新的一句"_s) << "that was typed later";
    EXPECT_EQ(unsent(u"a"_s), QStringList{u"半句"_s});
}

} // namespace lmp
