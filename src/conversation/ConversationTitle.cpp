#include "conversation/ConversationTitle.h"

#include <QTextBoundaryFinder>

namespace lmp {

using namespace Qt::StringLiterals;

QString ConversationTitle::of(const QString &firstMessage) {
    const QString line = firstMessage.trimmed().section(u'\n', 0, 0).simplified();
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, line);
    for (int character = 0; character < maxCharacters; ++character) {
        if (finder.toNextBoundary() < 0)
            return line;
    }
    const auto cut = finder.position();
    return cut < line.size() ? line.first(cut) + u"…"_s : line;
}

} // namespace lmp
