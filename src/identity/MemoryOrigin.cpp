#include "identity/MemoryOrigin.h"

#include "identity/MemoryTexts.h"

#include <QUuid>

namespace lmp {

using namespace Qt::StringLiterals;

QList<MemoryOrigin> MemoryOrigin::chain(const MemoryItemDTO &item, const MemoryHistoryResp &history) {
    QList<MemoryOrigin> chain;
    const auto add = [&](const QString &at, const QString &text) {
        chain.push_back({.id = QUuid::createUuid().toString(QUuid::WithoutBraces), .at = at, .text = text});
    };
    // The source that the service names is that of the wording now; after a change the chain begins with the wording
    // before.
    const auto changes = history.oldestFirst();
    const QString begun = item.validFrom.value_or(QString());
    if (changes.isEmpty())
        add(begun, item.source.isEmpty() ? u"来源没有注明"_s : u"来自："_s + item.source);
    else
        add(begun, u"最早的说法：「"_s + changes.first().previous + u"」"_s);
    for (const QString &reference : item.sourceRefs.value_or(QList<QString>()))
        add({}, u"出处："_s + reference);
    if (item.supersedes)
        add(begun, MemoryTexts::supersedes());
    for (const auto &entry : changes)
        add(entry.at,
            (entry.source.isEmpty() ? u"改成"_s : entry.source + u"，改成"_s) + u"「"_s + entry.next + u"」"_s);
    return chain;
}

} // namespace lmp
