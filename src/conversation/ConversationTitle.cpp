#include "conversation/ConversationTitle.h"

#include "core/Graphemes.h"

namespace lmp {

using namespace Qt::StringLiterals;

QString ConversationTitle::of(const QString &firstMessage) {
    const QString line = firstMessage.trimmed().section(u'\n', 0, 0).simplified();
    const QString cut = Graphemes::first(line, maxCharacters);
    return cut.size() < line.size() ? cut + u"…"_s : line;
}

} // namespace lmp
