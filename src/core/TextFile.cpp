#include "core/TextFile.h"

#include "platform/AtomicFile.h"

#include <QStringDecoder>

#include <cerrno>

namespace lmp {

using namespace Qt::StringLiterals;

std::expected<QString, QString> TextFile::read(const QString &path) {
    const auto bytes = AtomicFile::read(path, maxBytes);
    if (!bytes && bytes.error().code == EFBIG)
        return std::unexpected(u"这个文件太大了，请先截取要导入的一段。"_s);
    if (!bytes)
        return std::unexpected(u"这个文件打不开："_s + path);
    QStringDecoder decoder(QStringConverter::encodingForData(*bytes).value_or(QStringConverter::Utf8));
    const QString text = decoder(*bytes);
    if (decoder.hasError() || text.contains(QChar(u'\0')))
        return std::unexpected(u"这个文件不是 UTF-8 文本，请另存为文本文件再试。"_s);
    return text;
}

} // namespace lmp
