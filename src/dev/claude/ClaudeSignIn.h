#pragma once

#include "dev/DevSignIn.h"

namespace lmp {

/// Signing in to Claude Code: asks for the addresses, then for the end of what the user does in the browser.
class ClaudeSignIn : public DevSignIn {
public:
    DevProcess::Command command() const override;
    QByteArrayList opening() override;
    Step read(QByteArrayView line) override;
    std::chrono::seconds limit() const override { return std::chrono::minutes(5); }
    QString lateText() const override;
    QString deadText() const override;
};

} // namespace lmp
