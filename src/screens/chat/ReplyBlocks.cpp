#include "screens/chat/ReplyBlocks.h"

#include "screens/markdown/MarkdownBlockModel.h"

namespace lmp {

QObject *ReplyBlocks::make(const QString &text, QObject *parent) {
    auto *blocks = new MarkdownBlockModel(parent);
    blocks->setText(text);
    return blocks;
}

void ReplyBlocks::append(QObject *blocks, const QString &text) {
    static_cast<MarkdownBlockModel *>(blocks)->append(text);
}

void ReplyBlocks::setText(QObject *blocks, const QString &text) {
    static_cast<MarkdownBlockModel *>(blocks)->setText(text);
}

} // namespace lmp
