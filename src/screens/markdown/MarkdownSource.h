#pragma once

#include "MarkdownBlock.h"
#include "MarkdownLine.h"

namespace lmp {

/// A quote or a list item around a block.
struct MarkdownNesting {
    int id = 0; ///< one container, one id
    bool quote = false;
    bool operator==(const MarkdownNesting &) const = default;
};

/// One block as MarkdownBlockParser found it: its source, not yet turned into what is drawn.
struct MarkdownSource {
    MarkdownBlock::Kind kind = MarkdownBlock::Kind::Paragraph;
    QString text;  ///< paragraph, heading: the lines; code: all of it; table: all rows after the delimiters
    int lines = 0; ///< line feeds in `text`
    int level = 0;
    QString language;
    bool closed = false;
    bool blankBefore = false; ///< a blank line stands above
    bool goesOn = false;      ///< the rest of a paragraph that was cut
    QString header;           ///< table
    QList<line::Align> columns;

    QList<MarkdownNesting> around; ///< outermost first
    bool marked = false;           ///< first of its list item
    bool ordered = false;
    int number = 0;
};

} // namespace lmp
