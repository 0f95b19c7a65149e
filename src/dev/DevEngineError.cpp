#include "dev/DevEngineError.h"

namespace lmp {

DevEngineError DevEngineError::notInstalled(const QString &name) {
    return {Kind::notInstalled, QStringLiteral("这台 Mac 上没找到 ") + name};
}

DevEngineError DevEngineError::server(QString message) {
    return {Kind::server, std::move(message)};
}

DevEngineError DevEngineError::busy() {
    return {Kind::busy, QStringLiteral("上一回合还在跑")};
}

DevEngineError DevEngineError::notLoggedIn() {
    return {Kind::notLoggedIn, QStringLiteral("需要先登录 Lumenpair")};
}

} // namespace lmp
