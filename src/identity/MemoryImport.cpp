#include "identity/MemoryImport.h"

#include "identity/MemoryTexts.h"

namespace lmp {

using namespace Qt::StringLiterals;

QList<MemoryService::ExtractMessage> MemoryImport::messages(const QString &text) {
    QList<MemoryService::ExtractMessage> messages;
    for (const QStringView line : QStringTokenizer(QStringView(text), u'\n')) {
        if (const QStringView piece = line.trimmed(); !piece.isEmpty() && messages.size() < maxPieces)
            messages.push_back({u"user"_s, piece.toString()});
    }
    if (messages.size() == 1)
        messages.push_back({u"user"_s, MemoryTexts::importFiller()});
    return messages;
}

} // namespace lmp
