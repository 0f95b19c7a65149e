#include "screens/memory/MemoryInputs.h"

#include "support/Await.h"
#include "support/FileThreadEnd.h"
#include "support/ManualClock.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace lmp {

using namespace Qt::StringLiterals;

class MemoryInputsTest : public ::testing::Test {
protected:
    ConversationAccount account() {
        return {[this] { return user; },
                [this] {
                    return signIn;
                }};
    }
    std::unique_ptr<MemoryInputs> program() {
        auto made = std::make_unique<MemoryInputs>(ApplicationSupport::at(folder.path()), account(), clock);
        EXPECT_TRUE(await(made->keep()));
        return made;
    }
    /// Whether files can be written, by way of a lock that can be taken.
    void setDisk(bool works) {
        const QString lock = folder.filePath(u"MemoryInput/v1/.lock"_s);
        if (works) {
            ASSERT_TRUE(QDir().rmdir(lock));
            return;
        }
        QFile::remove(lock);
        ASSERT_TRUE(QDir().mkpath(lock));
    }
    bool turnClock(std::chrono::milliseconds by) {
        settle();
        clock.advance(by);
        settle();
        FileThread::finish();
        settle();
        return inputs->notice().isEmpty();
    }

    QTemporaryDir folder;
    FileThreadEnd files;
    ManualClock clock;
    std::optional<QString> user = u"u1"_s;
    QString signIn = u"s"_s;
    std::unique_ptr<MemoryInputs> inputs = program();
};

TEST_F(MemoryInputsTest, SavesThatOverlapDoNotMeetEachOther) {
    // Two windows that end at once, with a key in between.
    inputs->setText(u"k"_s, u"一"_s);
    auto one = inputs->keep();
    auto two = inputs->keep();
    inputs->setText(u"k"_s, u"一二"_s);
    auto three = inputs->keep();
    EXPECT_TRUE(await(std::move(one)));
    EXPECT_TRUE(await(std::move(two)));
    EXPECT_TRUE(await(std::move(three)));
    EXPECT_EQ(inputs->notice(), QString());

    // The last keys of all, while a save is under way.
    inputs->setText(u"k"_s, u"一二三"_s);
    auto four = inputs->keep();
    inputs->setText(u"k"_s, u"一二三四"_s);
    inputs.reset();
    await(std::move(four));
    inputs = program();
    EXPECT_EQ(inputs->text(u"k"_s), u"一二三四"_s);
}

TEST_F(MemoryInputsTest, WhatTheDiskRefusesIsTriedAgainAndFollowsItsAccount) {
    setDisk(false);
    inputs->setText(u"k"_s, u"秘密"_s);
    EXPECT_FALSE(turnClock(MemoryInputs::typingPause));
    setDisk(true);
    EXPECT_TRUE(turnClock(MemoryInputs::retryPause)) << "without another key";

    setDisk(false);
    inputs->setText(u"k"_s, u"更多秘密"_s);
    user = u"u2"_s;
    signIn = u"t"_s;
    inputs->recheckAccount();
    EXPECT_FALSE(await(inputs->keep())) << "a quit would lose it";
    EXPECT_EQ(inputs->text(u"k"_s) + inputs->notice(), QString());
    user = u"u1"_s;
    inputs->recheckAccount();
    EXPECT_EQ(inputs->text(u"k"_s), u"更多秘密"_s);
    setDisk(true);
    EXPECT_TRUE(await(inputs->keep()));
    EXPECT_EQ(program()->text(u"k"_s), u"更多秘密"_s);
}

TEST_F(MemoryInputsTest, WhatIsTypedBeforeItIsKnownWhoTypesIsKept) {
    for (const bool samePerson : {true, false}) {
        SCOPED_TRACE(samePerson);
        user.reset();
        signIn += u'+';
        inputs->recheckAccount();
        inputs->setText(u"k"_s, u"先写的"_s);
        EXPECT_FALSE(await(inputs->keep()));
        user = samePerson ? u"u1"_s : u"u2"_s;
        signIn += samePerson ? QString() : u"+"_s;
        inputs->recheckAccount();
        EXPECT_TRUE(await(inputs->keep()));
        EXPECT_EQ(inputs->text(u"k"_s), samePerson ? u"先写的"_s : QString());
    }
}

TEST_F(MemoryInputsTest, WhereTwoProgramsMeetNothingIsLost) {
    const auto other = program();
    other->setText(u"k"_s, u"那边"_s);
    ASSERT_TRUE(await(other->keep()));
    inputs->setText(u"k"_s, u"这边"_s);
    await(inputs->keep());
    EXPECT_TRUE(await(inputs->keep()));
    EXPECT_EQ(inputs->text(u"k"_s), u"这边\n那边"_s);
    EXPECT_FALSE(inputs->notice().isEmpty());
    inputs->closeNotice();
    EXPECT_EQ(inputs->notice(), QString());
    EXPECT_EQ(program()->text(u"k"_s), u"这边\n那边"_s);
    EXPECT_TRUE(eventually([this] {
        FileThread::finish();
        return QDir(folder.filePath(u"MemoryInput/v1"_s)).entryList({u"*.json"_s}).size() == 1;
    })) << "nothing is left beside";
}

TEST_F(MemoryInputsTest, WhatCannotBeReadIsSaid) {
    QFile file(folder.filePath(u"MemoryInput/v1/x.json"_s));
    ASSERT_TRUE(QDir().mkpath(folder.filePath(u"MemoryInput/v1"_s)) && file.open(QIODevice::WriteOnly));
    file.write("{");
    file.close();
    inputs = program();
    EXPECT_FALSE(inputs->notice().isEmpty());
    EXPECT_TRUE(file.exists());
}

} // namespace lmp
