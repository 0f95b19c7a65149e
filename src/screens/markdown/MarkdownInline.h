#pragma once

#include "MarkdownBlock.h"

#include <utility>

namespace lmp {

/// The content of a paragraph, heading or table cell as rich text that is safe to draw.
///
/// Everything is escaped; the only elements are b, i, s, code, br, a (to http or https) and span class="em" (emphasis
/// of text that has no slant). A link whose words name another host than it leads to has that one said behind it. A
/// value; any thread. Cannot fail: what is no Markdown is text.
struct MarkdownInline {
    struct Picture {
        QString url;
        QString alt;
    };

    QString text;
    QList<MarkdownLink> links;
    QList<Picture> pictures; ///< in the order they stand in the text, where "[图片：…]" holds their place
    bool picturesOnly = false;
    int length = 0; ///< characters once laid out

    static MarkdownInline of(QStringView source);
    /// `text` as rich text shows it to the letter.
    static QString escaped(QStringView text);
    /// Whether the character itself is not seen but turns the direction of what follows, so that a text reads as
    /// something else than it is.
    static bool turnsDirection(QChar c);
    /// The address as it may be opened: http or https with a host and no user name; empty otherwise.
    static QString safeUrl(const QString &address);
};

} // namespace lmp
