#include "FuzzTarget.h"

#include "screens/markdown/CodeHighlighter.h"
#include "screens/markdown/MarkdownDocument.h"

#include <cstdlib>

namespace lmp {

namespace {

using namespace Qt::StringLiterals;

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// Nothing but the elements that are drawn, each closed, and links to the web alone.
void requireSafe(const QString &text) {
    static const QStringList elements{u"b"_s, u"i"_s, u"s"_s, u"code"_s, u"tr"_s, u"span class=\"em\""_s};
    QStringList open;
    for (qsizetype at = text.indexOf(u'<'); at >= 0; at = text.indexOf(u'<', at + 1)) {
        const qsizetype end = text.indexOf(u'>', at);
        require(end > at);
        const QString tag = text.sliced(at + 1, end - at - 1);
        const QString name = tag.section(u' ', 0, 0);
        if (tag == u"br"_s)
            continue;
        if (tag.startsWith(u'/')) {
            require(!open.isEmpty() && u'/' + open.takeLast() == tag);
            continue;
        }
        open += name;
        if (name == u"a"_s)
            require((tag.startsWith(u"a href=\"http://"_s) || tag.startsWith(u"a href=\"https://"_s)) &&
                    tag.count(u'"') == 2);
        else if (name == u"table"_s || name == u"td"_s || name == u"th"_s)
            require(!tag.contains(u"style"_s));
        else
            require(elements.contains(tag));
    }
    require(open.isEmpty());
}

} // namespace

/// A Markdown text means the same wherever it is cut, and what is drawn of it is safe and small.
void fuzzMarkdown(QByteArrayView input) {
    const qsizetype head = std::min<qsizetype>(input.size(), 4);
    const QByteArrayView cuts = input.first(head);
    const QString text = QString::fromUtf8(input.sliced(head));
    MarkdownDocument whole, grown;
    whole.setText(text);
    qsizetype at = 0;
    for (qsizetype cut = 0; at < text.size(); ++cut) {
        const quint8 how = cuts.isEmpty() ? 0 : quint8(cuts[cut % cuts.size()]);
        const qsizetype size = std::min<qsizetype>(1 + how % 64, text.size() - at);
        grown.append(QStringView(text).sliced(at, size));
        if (how >= 192)
            grown.finish();
        at += size;
    }
    grown.finish();
    require(grown.blocks() == whole.blocks());
    for (const MarkdownBlock &block : whole.blocks()) {
        requireSafe(block.text);
        require(block.code.size() <= MarkdownLimits::code);
        require(block.quoteDepth + block.listDepth <= MarkdownLimits::depth);
        qsizetype end = 0;
        for (const auto &span : CodeHighlighter::spans(block.code, block.language)) {
            require(span.start >= end && span.length > 0);
            end = span.start + span.length;
        }
        require(end <= block.code.size());
    }
}

} // namespace lmp
