#pragma once

#include "WindowDriver.h"
#include "support/SandboxFixture.h"

namespace lmp {

/// The program with its window against a sandbox of its own, with nothing of the person's within reach.
class WindowFixture : public SandboxFixture {
protected:
    void SetUp() override;
    void TearDown() override;
    WindowOptions options(const QString &link = {}) const;
    /// Somebody has said something that nobody keeps.
    static bool typesIncognito(WindowDriver &window);
    /// The next start finds somebody signed in.
    void signInBefore();

    QTemporaryDir m_home;
};

} // namespace lmp
