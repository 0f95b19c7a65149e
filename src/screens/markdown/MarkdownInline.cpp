#include "MarkdownInline.h"

#include "InlineWriter.h"

#include <QUrl>

#include <md4c.h>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

QString plain(const MD_ATTRIBUTE &attribute) {
    QString text;
    for (int i = 0; attribute.size > 0 && attribute.substr_offsets[i] < attribute.size; ++i) {
        const auto begin = attribute.substr_offsets[i];
        const QByteArrayView part(attribute.text + begin, qsizetype(attribute.substr_offsets[i + 1] - begin));
        switch (attribute.substr_types[i]) {
        case MD_TEXT_ENTITY:
            text += InlineWriter::entity(QString::fromUtf8(part));
            break;
        case MD_TEXT_NULLCHAR:
            text += QChar::ReplacementCharacter;
            break;
        default:
            text += QString::fromUtf8(part);
        }
    }
    return text;
}

/// What is being written, and the spans that are open: the parser has been seen to close some it never opened and to
/// leave others open.
struct Reader {
    InlineWriter writer;
    QList<MD_SPANTYPE> spans;

    void open(MD_SPANTYPE type, void *detail) {
        switch (type) {
        case MD_SPAN_EM:
            writer.openEmphasis();
            break;
        case MD_SPAN_STRONG:
            writer.open(u"b"_s);
            break;
        case MD_SPAN_DEL:
            writer.open(u"s"_s);
            break;
        case MD_SPAN_CODE:
            writer.openCode();
            break;
        case MD_SPAN_A:
            writer.openLink(plain(static_cast<MD_SPAN_A_DETAIL *>(detail)->href));
            break;
        case MD_SPAN_IMG:
            writer.openPicture(plain(static_cast<MD_SPAN_IMG_DETAIL *>(detail)->src));
            break;
        default:
            return;
        }
        spans += type;
    }

    /// Closes the innermost span of that type, and with it all that opened inside.
    void close(MD_SPANTYPE type) {
        while (spans.contains(type)) {
            const MD_SPANTYPE last = spans.takeLast();
            switch (last) {
            case MD_SPAN_EM:
                writer.closeEmphasis();
                break;
            case MD_SPAN_STRONG:
                writer.close(u"b"_s);
                break;
            case MD_SPAN_DEL:
                writer.close(u"s"_s);
                break;
            case MD_SPAN_CODE:
                writer.closeCode();
                break;
            case MD_SPAN_A:
                writer.closeLink();
                break;
            default:
                writer.closePicture();
            }
            if (last == type)
                return;
        }
    }
};

int enterSpan(MD_SPANTYPE type, void *detail, void *user) {
    static_cast<Reader *>(user)->open(type, detail);
    return 0;
}

int leaveSpan(MD_SPANTYPE type, void *, void *user) {
    static_cast<Reader *>(user)->close(type);
    return 0;
}

int text(MD_TEXTTYPE type, const MD_CHAR *bytes, MD_SIZE size, void *user) {
    InlineWriter &writer = static_cast<Reader *>(user)->writer;
    const QString part = QString::fromUtf8(bytes, qsizetype(size));
    switch (type) {
    case MD_TEXT_ENTITY:
        writer.text(InlineWriter::entity(part));
        break;
    case MD_TEXT_NULLCHAR:
        writer.text(QString(QChar::ReplacementCharacter));
        break;
    case MD_TEXT_HTML:
        writer.html(part);
        break;
    default:
        writer.text(part);
    }
    return 0;
}

int ignoreBlock(MD_BLOCKTYPE, void *, void *) {
    return 0;
}

/// As the one line of a heading, which is inline content whatever it looks like. A form feed stands for the line feed:
/// to the parser it is white space like any other.
QByteArray asHeading(QStringView source) {
    QString line = u"# "_s;
    for (const QStringView one : source.split(u'\n')) {
        if (line.size() > 2)
            line += u'\f';
        QStringView text = one.trimmed();
        // The other way to ask for a line break, which every line feed is here.
        if (text.endsWith(u'\\') && !text.endsWith(u"\\\\"_s) &&
            one.data() + one.size() != source.data() + source.size())
            text.chop(1);
        for (const QChar c : text)
            line += c == u'\r' || c == u'\f' ? u' ' : c;
    }
    return (line + u" #"_s).toUtf8();
}

} // namespace

MarkdownInline MarkdownInline::of(QStringView source) {
    MD_PARSER parser{};
    parser.flags = MD_FLAG_STRIKETHROUGH | MD_FLAG_NOINDENTEDCODEBLOCKS | MD_FLAG_NOHTMLBLOCKS;
    parser.enter_block = ignoreBlock;
    parser.leave_block = ignoreBlock;
    parser.enter_span = enterSpan;
    parser.leave_span = leaveSpan;
    parser.text = lmp::text;
    Reader reader;
    const QByteArray line = asHeading(source);
    if (md_parse(line.data(), MD_SIZE(line.size()), &parser, &reader) != 0) {
        reader = Reader();
        reader.writer.text(source.toString().replace(u'\n', u'\f'));
    }
    while (!reader.spans.isEmpty())
        reader.close(reader.spans.last());
    return reader.writer.finish();
}

QString MarkdownInline::escaped(QStringView text) {
    QString safe;
    safe.reserve(text.size());
    for (const QChar c : text) {
        switch (c.unicode()) {
        case u'&':
            safe += u"&amp;"_s;
            break;
        case u'<':
            safe += u"&lt;"_s;
            break;
        case u'>':
            safe += u"&gt;"_s;
            break;
        case u'"':
            safe += u"&quot;"_s;
            break;
        default:
            safe += c;
        }
    }
    return safe;
}

bool MarkdownInline::turnsDirection(QChar c) {
    return (c >= QChar(0x202a) && c <= QChar(0x202e)) || (c >= QChar(0x2066) && c <= QChar(0x2069));
}

QString MarkdownInline::safeUrl(const QString &address) {
    const QUrl url(address, QUrl::StrictMode);
    const bool web = url.scheme() == u"http"_s || url.scheme() == u"https"_s;
    if (!url.isValid() || !web || url.host().isEmpty() || !url.userInfo().isEmpty())
        return {};
    return QString::fromLatin1(url.toEncoded());
}

} // namespace lmp
