#include "identity/MemoryImport.h"

#include "identity/MemoryTexts.h"

#include <functional>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// Line ends as programs of all kinds write them.
bool endsLine(QChar character) {
    return character == u'\n' || character == u'\r' || character == QChar(QChar::LineSeparator) ||
           character == QChar(QChar::ParagraphSeparator);
}

void eachPiece(const QString &text, const std::function<void(QStringView)> &visit) {
    QStringView rest(text);
    while (!rest.isEmpty()) {
        const auto end = std::ranges::find_if(rest, endsLine);
        const auto size = end - rest.begin();
        if (const QStringView piece = rest.first(size).trimmed(); !piece.isEmpty())
            visit(piece);
        rest = rest.sliced(end == rest.end() ? size : size + 1);
    }
}

} // namespace

QList<MemoryService::ExtractMessage> MemoryImport::messages(const QString &text) {
    QList<MemoryService::ExtractMessage> messages;
    eachPiece(text, [&](QStringView piece) {
        if (messages.size() < maxPieces)
            messages.push_back({u"user"_s, piece.toString()});
    });
    if (messages.size() == 1)
        messages.push_back({u"user"_s, MemoryTexts::importFiller()});
    return messages;
}

QString MemoryImport::rest(const QString &text) {
    qsizetype taken = 0;
    qsizetype end = text.size();
    eachPiece(text, [&](QStringView piece) {
        if (taken++ == maxPieces)
            end = piece.data() - QStringView(text).data();
    });
    return text.sliced(end);
}

qsizetype MemoryImport::countPieces(const QString &text) {
    qsizetype count = 0;
    eachPiece(text, [&](QStringView) { ++count; });
    return count;
}

} // namespace lmp
