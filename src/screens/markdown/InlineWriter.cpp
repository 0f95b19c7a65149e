#include "InlineWriter.h"

#include <QHash>
#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

bool isAsciiWord(QChar c) {
    return c.unicode() < 128 && c.isLetterOrNumber();
}

bool isAddress(QChar c) {
    return isAsciiWord(c) || (c.unicode() < 128 && u"-._~:/?#[]@!$&'()*+,;=%"_s.contains(c));
}

/// Whether characters of this script have a slanted form.
bool slants(QStringView text) {
    return std::ranges::none_of(
        text, [](QChar c) { return c.unicode() >= 0x2e80 && !(c.unicode() >= 0xa640 && c.unicode() < 0xac00); });
}

/// How much of `text`, which begins with an address, is the address: not the full stop that ends the sentence.
qsizetype addressLength(QStringView text) {
    qsizetype end = 0;
    while (end < text.size() && isAddress(text[end]))
        ++end;
    while (end > 0) {
        const QChar last = text[end - 1];
        const QStringView address = text.first(end);
        const bool unopened = (last == u')' && address.count(u')') > address.count(u'(')) ||
                              (last == u']' && address.count(u']') > address.count(u'['));
        if (!unopened && !u".,:;!?'*_~"_s.contains(last))
            break;
        --end;
    }
    return end;
}

/// The beginning of the next address in `text` from `at` on, or -1.
qsizetype nextAddress(QStringView text, qsizetype at) {
    for (; at < text.size(); ++at) {
        const QChar c = text[at];
        if ((c != u'h' && c != u'H' && c != u'w' && c != u'W') || (at > 0 && isAsciiWord(text[at - 1])))
            continue;
        const QStringView rest = text.sliced(at);
        for (const QStringView prefix : {u"https://"_s, u"http://"_s, u"www."_s}) {
            if (rest.startsWith(prefix, Qt::CaseInsensitive))
                return at;
        }
    }
    return -1;
}

/// The address as people write it down: without what every address has.
QStringView bareAddress(QStringView address) {
    for (const QStringView prefix : {u"https://"_s, u"http://"_s}) {
        if (address.startsWith(prefix, Qt::CaseInsensitive))
            address = address.sliced(prefix.size());
    }
    return address.endsWith(u'/') ? address.chopped(1) : address;
}

/// The host that the words of a link name, where they read like an address.
QString hostNamed(const QString &words) {
    static const QRegularExpression named(
        u"(?:https?://|www\\.)\\S+|^[\\w.-]+\\.(?:com|cn|net|org|gov|edu)(?:[/:?#]\\S*)?$"_s,
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    const QString address = named.match(words.trimmed()).captured();
    const bool whole = address.startsWith(u"http"_s, Qt::CaseInsensitive) && address.contains(u"://"_s);
    return QUrl((whole ? QString() : u"https://"_s) + address).host(QUrl::FullyEncoded);
}

QString withoutWww(const QString &host) {
    return host.startsWith(u"www."_s) ? host.sliced(4) : host;
}

/// The host of `url` where the words of its link speak of another one, or of one that only looks like it.
QString hostHidden(const QString &words, const QString &url) {
    const QString named = hostNamed(words), host = QUrl(url).host(QUrl::FullyEncoded);
    const bool looksAlike = host.contains(u"xn--"_s) && !words.contains(host);
    return !named.isEmpty() && (looksAlike || withoutWww(named) != withoutWww(host)) ? host : QString();
}

bool isBreak(QStringView tag) {
    QString name = tag.toString().remove(u' ').remove(u'/');
    return name.compare(u"<br>"_s, Qt::CaseInsensitive) == 0;
}

} // namespace

void InlineWriter::open(const QString &element) {
    flush();
    if (m_pictures == 0)
        m_made.text += u'<' + element + u'>';
}

void InlineWriter::close(const QString &element) {
    flush();
    if (m_pictures == 0)
        m_made.text += u"</"_s + element + u'>';
}

void InlineWriter::openEmphasis() {
    flush();
    m_emphasis += m_made.text.size();
}

void InlineWriter::closeEmphasis() {
    flush();
    const qsizetype begin = m_emphasis.takeLast();
    if (m_pictures > 0)
        return;
    const bool slanted = slants(QStringView(m_made.text).sliced(begin));
    m_made.text.insert(begin, slanted ? u"<i>"_s : u"<span class=\"em\">"_s);
    m_made.text += slanted ? u"</i>"_s : u"</span>"_s;
}

void InlineWriter::openCode() {
    open(u"code"_s);
    ++m_code;
}

void InlineWriter::closeCode() {
    flush();
    --m_code;
    close(u"code"_s);
}

void InlineWriter::openLink(const QString &address) {
    flush();
    if (m_pictures > 0)
        return;
    m_inLink = true;
    m_address = address;
    m_url = MarkdownInline::safeUrl(address);
    m_linkText.clear();
    if (m_url.isEmpty())
        return;
    m_made.links += MarkdownLink{m_made.length, 0, m_url};
    m_made.text += u"<a href=\""_s + MarkdownInline::escaped(m_url) + u"\">"_s;
}

void InlineWriter::closeLink() {
    flush();
    if (m_pictures > 0 || !m_inLink)
        return;
    m_inLink = false;
    if (m_url.isEmpty()) {
        const bool tells =
            bareAddress(m_linkText.trimmed()) == bareAddress(m_address) || u"mailto:"_s + m_linkText == m_address;
        if (!tells && !m_address.isEmpty())
            write(u"（"_s + m_address + u"）"_s);
        return;
    }
    m_made.text += u"</a>"_s;
    m_made.links.last().length = m_made.length - m_made.links.last().start;
    if (const QString host = hostHidden(m_linkText, m_url); !host.isEmpty())
        write(u"（通往 "_s + host + u"）"_s);
}

void InlineWriter::openPicture(const QString &address) {
    flush();
    if (m_pictures++ > 0)
        return;
    m_made.pictures += MarkdownInline::Picture{address, QString()};
    m_alt.clear();
}

void InlineWriter::closePicture() {
    flush();
    if (--m_pictures > 0)
        return;
    m_made.pictures.last().alt = m_alt.simplified();
    // A picture that is a link has its text for that.
    const bool only = m_onlyPictures && !m_inLink;
    const QString &url = MarkdownInline::safeUrl(m_made.pictures.last().url);
    const QString words = m_alt.isEmpty() ? u"[图片]"_s : u"[图片："_s + m_alt.simplified() + u"]"_s;
    if (m_inLink || url.isEmpty())
        write(words);
    else
        writeLink(words, url);
    m_onlyPictures = only;
}

void InlineWriter::text(QStringView part) {
    m_run += part;
}

void InlineWriter::html(QStringView tag) {
    flush();
    if (isBreak(tag) && m_pictures == 0)
        breakLine();
    else
        write(tag);
}

MarkdownInline InlineWriter::finish() {
    flush();
    m_made.picturesOnly = m_onlyPictures && !m_made.pictures.isEmpty();
    return std::move(m_made);
}

void InlineWriter::flush() {
    const QString run = std::exchange(m_run, QString());
    if (m_pictures > 0)
        m_alt += run;
    else if (m_code > 0 || m_inLink)
        write(run);
    else
        writeWithAddresses(run);
}

void InlineWriter::writeWithAddresses(QStringView part) {
    qsizetype written = 0;
    for (qsizetype at = nextAddress(part, 0); at >= 0; at = nextAddress(part, at)) {
        const qsizetype length = addressLength(part.sliced(at));
        const QStringView address = part.sliced(at, length);
        const bool named = address.startsWith(u"www."_s, Qt::CaseInsensitive);
        const QString url = MarkdownInline::safeUrl((named ? u"https://"_s : QString()) + address.toString());
        if (!url.isEmpty()) {
            write(part.sliced(written, at - written));
            writeLink(address, url);
            written = at + length;
        }
        at += std::max<qsizetype>(length, 1);
    }
    write(part.sliced(written));
}

void InlineWriter::writeLink(QStringView text, const QString &url) {
    const int start = m_made.length;
    m_made.text += u"<a href=\""_s + MarkdownInline::escaped(url) + u"\">"_s;
    write(text);
    m_made.text += u"</a>"_s;
    m_made.links += MarkdownLink{start, m_made.length - start, url};
}

/// Text to the letter, but for characters that would end the paragraph, mean something to the layout or turn the
/// direction of all that follows.
void InlineWriter::write(QStringView part) {
    QString safe;
    for (const QChar c : part) {
        if (c == u'\f' && m_code == 0) {
            m_made.text += MarkdownInline::escaped(std::exchange(safe, QString()));
            breakLine();
            continue;
        }
        const char16_t code = c.unicode();
        if (code == u'\f' || code == u'\t') {
            safe += u' ';
        } else if (code == 0 || code == 0xfffc || (code >= 0xfdd0 && code <= 0xfdef)) {
            safe += QChar::ReplacementCharacter;
        } else if (code == QChar::LineSeparator || code == QChar::ParagraphSeparator) {
            safe += u' ';
        } else if (code >= u' ' && code != 0x7f && !MarkdownInline::turnsDirection(c)) {
            safe += c;
        } else {
            continue;
        }
        ++m_made.length;
        if (!c.isSpace())
            m_onlyPictures = false;
    }
    if (m_inLink)
        m_linkText += safe;
    m_made.text += MarkdownInline::escaped(safe);
}

void InlineWriter::breakLine() {
    m_made.text += u"<br>"_s;
    ++m_made.length;
}

QString InlineWriter::entity(const QString &text) {
    static const QHash<QString, char16_t> named{
        {u"amp"_s, u'&'},     {u"lt"_s, u'<'},      {u"gt"_s, u'>'},       {u"quot"_s, u'"'},    {u"apos"_s, u'\''},
        {u"nbsp"_s, 0xa0},    {u"copy"_s, 0xa9},    {u"reg"_s, 0xae},      {u"trade"_s, 0x2122}, {u"hellip"_s, 0x2026},
        {u"mdash"_s, 0x2014}, {u"ndash"_s, 0x2013}, {u"middot"_s, 0xb7},   {u"bull"_s, 0x2022},  {u"times"_s, 0xd7},
        {u"divide"_s, 0xf7},  {u"deg"_s, 0xb0},     {u"plusmn"_s, 0xb1},   {u"le"_s, 0x2264},    {u"ge"_s, 0x2265},
        {u"ne"_s, 0x2260},    {u"rarr"_s, 0x2192},  {u"larr"_s, 0x2190},   {u"uarr"_s, 0x2191},  {u"darr"_s, 0x2193},
        {u"ldquo"_s, 0x201c}, {u"rdquo"_s, 0x201d}, {u"lsquo"_s, 0x2018},  {u"rsquo"_s, 0x2019}, {u"laquo"_s, 0xab},
        {u"raquo"_s, 0xbb},   {u"yen"_s, 0xa5},     {u"euro"_s, 0x20ac},   {u"pound"_s, 0xa3},   {u"cent"_s, 0xa2},
        {u"ensp"_s, 0x2002},  {u"emsp"_s, 0x2003},  {u"thinsp"_s, 0x2009}, {u"infin"_s, 0x221e}, {u"micro"_s, 0xb5},
    };
    const QStringView name = QStringView(text).sliced(1).chopped(1);
    if (!name.startsWith(u'#')) {
        const auto found = named.constFind(name.toString());
        return found == named.cend() ? text : QString(QChar(*found));
    }
    const bool hex = name.size() > 1 && name[1].toLower() == u'x';
    bool whole = false;
    const uint code = name.sliced(hex ? 2 : 1).toUInt(&whole, hex ? 16 : 10);
    if (!whole || code == 0 || code > 0x10ffff || (code >= 0xd800 && code < 0xe000))
        return QString(QChar::ReplacementCharacter);
    return QString::fromUcs4(reinterpret_cast<const char32_t *>(&code), 1);
}

} // namespace lmp
