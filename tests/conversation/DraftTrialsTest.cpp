#include "support/DraftTrials.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace lmp {

class DraftTrialsTest : public ::testing::Test {
protected:
    QTemporaryDir folder;
};

TEST_F(DraftTrialsTest, AKilledProgramLosesNoSave) {
    const auto result = DraftTrials::kill(folder.path(), 60);
    EXPECT_EQ(result.lost, 0);
    EXPECT_EQ(result.torn, 0);
    EXPECT_EQ(result.leftBeside, 0);
    EXPECT_EQ(result.open, 0) << "of " << result.looks;
    EXPECT_GT(result.midSave, 0);
    EXPECT_GT(result.acknowledged, 0);
}

TEST_F(DraftTrialsTest, AKilledProgramLosesNothingThatItSent) {
    const auto result = DraftTrials::killSends(folder.filePath(QStringLiteral("x")), 8);
    EXPECT_EQ(result.lost, 0);
    EXPECT_GT(result.typed, 8);
}

TEST_F(DraftTrialsTest, EveryCallOfASaveMayFail) {
    const auto result = DraftTrials::grid(folder.path());
    EXPECT_EQ(result.wrong.toStdString(), "");
    EXPECT_EQ(result.widest, 0u);
    EXPECT_GT(result.reported, 100);
}

TEST_F(DraftTrialsTest, ManyWritersLoseNoUpdate) {
    const auto result = DraftTrials::race(folder.path(), 4, 100);
    EXPECT_EQ(result.lostUpdates, 0);
    EXPECT_EQ(result.failed, 0);
    EXPECT_EQ(result.landed + result.changedElsewhere, result.saves);
    EXPECT_GT(result.landed, 0);
}

} // namespace lmp
