#pragma once

#include <QObject>
#include <QString>

namespace lmp {

/// Where the text of a reply becomes the blocks that are drawn. Free of state; UI thread.
class ReplyBlocks {
public:
    /// @return null where nothing draws blocks
    static QObject *make(const QString &text, QObject *parent);
    static void append(QObject *blocks, const QString &text);
    static void setText(QObject *blocks, const QString &text);
};

} // namespace lmp
