#pragma once

#include "dev/DevSignIn.h"

namespace lmp {

/// Signing in to Codex: asks its application server for the address, then waits for word that the browser is through.
class CodexSignIn : public DevSignIn {
public:
    DevProcess::Command command() const override;
    QByteArrayList opening() override;
    Step read(QByteArrayView line) override;
    std::chrono::seconds limit() const override { return std::chrono::minutes(5); }
    QString lateText() const override;
    QString deadText() const override;

private:
    QString m_loginId; ///< of this attempt, once it is known
};

} // namespace lmp
