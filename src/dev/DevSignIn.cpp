#include "dev/DevSignIn.h"

#include "dev/claude/ClaudeSignIn.h"
#include "dev/codex/CodexSignIn.h"

#include <QUrl>

namespace lmp {

using namespace Qt::StringLiterals;

std::unique_ptr<DevSignIn> DevSignIn::of(DevEngineKind kind) {
    switch (kind) {
    case DevEngineKind::claude:
        return std::make_unique<ClaudeSignIn>();
    case DevEngineKind::codex:
        return std::make_unique<CodexSignIn>();
    case DevEngineKind::relay:
        break;
    }
    return nullptr;
}

bool DevSignIn::isWebAddress(const QString &url) {
    const QUrl address(url, QUrl::StrictMode);
    return address.isValid() && !address.host().isEmpty() &&
           (address.scheme() == "https"_L1 || address.scheme() == "http"_L1);
}

} // namespace lmp
