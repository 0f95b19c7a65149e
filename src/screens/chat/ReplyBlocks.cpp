#include "screens/chat/ReplyBlocks.h"

namespace lmp {

QObject *ReplyBlocks::make(const QString &, QObject *) {
    return nullptr;
}

void ReplyBlocks::append(QObject *, const QString &) {}

void ReplyBlocks::setText(QObject *, const QString &) {}

} // namespace lmp
