#include "conversation/TTSTextChunker.h"

#include "core/Graphemes.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

bool endsPiece(QStringView grapheme) {
    static constexpr QStringView sentenceEnds = u".。！？!?";
    const char16_t first = grapheme.front().unicode();
    if (grapheme.size() == 1 && sentenceEnds.contains(QChar(first)))
        return true;
    return (first >= u'\n' && first <= u'\r') || first == 0x85 || first == 0x2028 || first == 0x2029;
}

} // namespace

std::expected<QList<QString>, TTSTextChunker::ChunkError> TTSTextChunker::chunks(const QString &text) {
    QList<QString> pieces;
    QString piece;
    const auto emitPiece = [&] {
        if (!piece.isEmpty())
            pieces.push_back(std::exchange(piece, {}));
    };
    Graphemes graphemes(text);
    for (QStringView grapheme = graphemes.next(); !grapheme.isEmpty(); grapheme = graphemes.next()) {
        if (grapheme.size() > maxUnits)
            return std::unexpected(ChunkError::oversizedGrapheme);
        if (piece.size() + grapheme.size() > maxUnits)
            emitPiece();
        piece += grapheme;
        if (endsPiece(grapheme))
            emitPiece();
    }
    emitPiece();
    return pieces;
}

QString TTSTextChunker::describe(ChunkError) {
    return u"文字含有过长的组合字符，暂时无法朗读，请继续查看文字。"_s;
}

} // namespace lmp
