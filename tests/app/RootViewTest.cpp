#include "app/RootView.h"

#include "support/Await.h"
#include "support/FakeKeychain.h"
#include "support/ManualClock.h"
#include "support/MemorySettings.h"

#include <gtest/gtest.h>

namespace lmp {

using namespace Qt::StringLiterals;
using Stage = RootView::Stage;

class RootViewTest : public ::testing::Test {
protected:
    ~RootViewTest() override {
        EXPECT_TRUE(eventually([&] { return keychain.isIdle() && !auth.keychainWritePending(); }));
    }
    void signIn(const QString &id, std::optional<QString> handle = u"小明"_s) {
        AuthResponse answer;
        answer.token = u"t"_s;
        answer.userInfo.id = id;
        answer.userInfo.handle = std::move(handle);
        auth.signIn(answer);
    }

    FakeKeychain keychain;
    ManualClock clock;
    MemorySettings settings;
    AuthStore auth{QUrl(u"http://127.0.0.1:1/api"_s), keychain, clock};
};

TEST_F(RootViewTest, ANewPersonSeesEverythingOnce) {
    RootView root(auth, settings);
    std::vector<Stage> stages{root.stage()};
    QObject::connect(&root, &RootView::stageChanged, [&] { stages.push_back(root.stage()); });
    auth.startSignedOut();
    signIn(u"u1"_s, {});
    root.finishOnboarding(); // not its turn
    root.setShowPrivacyFromNotice(true);
    root.finishMigrationNotice();
    EXPECT_FALSE(root.showPrivacyFromNotice()) << "gone with the notice under it";
    root.finishMigrationNotice(); // the second click of a double one
    EXPECT_TRUE(root.onboardingSeenRaw().isEmpty());
    root.finishOnboarding();
    root.finishHandleSetup();
    EXPECT_EQ(stages, (std::vector{Stage::Launch, Stage::SignedOut, Stage::Migration, Stage::Onboarding,
                                   Stage::HandleSetup, Stage::Shell}));
    EXPECT_EQ(root.migrationSeenRaw(), u"u1"_s);
    EXPECT_EQ(settings.values.value(RootView::onboardingSeenKey), "u1");

    // The next start, and another person on the same machine.
    EXPECT_EQ(RootView(auth, settings).stage(), Stage::Shell);
    auth.signOut();
    signIn(u"u2"_s);
    EXPECT_EQ(root.stage(), Stage::Migration);
    root.finishMigrationNotice();
    root.finishOnboarding();
    EXPECT_EQ(root.stage(), Stage::Shell) << "has a handle";
    EXPECT_EQ(root.migrationSeenRaw(), u"u1\nu2"_s);
    auth.signOut();
    signIn(u"u1"_s, {});
    EXPECT_EQ(root.stage(), Stage::Shell);
}

TEST_F(RootViewTest, SettingsThatCannotBeWrittenLockNobodyOut) {
    settings.full = true;
    RootView root(auth, settings);
    signIn(u"u1"_s);
    root.finishMigrationNotice();
    root.finishOnboarding();
    EXPECT_EQ(root.stage(), Stage::Shell);
}

} // namespace lmp
