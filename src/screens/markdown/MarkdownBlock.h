#pragma once

#include <QList>
#include <QString>

namespace lmp {

/// A link of a block's text: where it stands and where it leads.
struct MarkdownLink {
    int start = 0;  ///< in characters of the laid out text
    int length = 0; ///
    QString url;    ///< http or https, encoded
    bool operator==(const MarkdownLink &) const = default;
};

/// One block of a message as it is drawn: nested lists and quotes are flattened, each block knows its own indentation.
///
/// A value; made by MarkdownDocument. Nothing in it depends on a theme: `text` names its colours by element and class.
struct MarkdownBlock {
    enum class Kind { Paragraph, Heading, Code, Table, Image, Rule };
    enum class Task { None, Open, Done };

    Kind kind = Kind::Paragraph;
    QString text; ///< paragraph, heading, table: rich text, everything escaped, links to http(s) only
    QList<MarkdownLink> links;
    int level = 0; ///< heading

    QString language;   ///< code: as written after the fence
    QString code;       ///< code: what is shown of it, see MarkdownLimits
    int lines = 0;      ///< code, table: all there are
    int columns = 0;    ///< table
    int hidden = 0;     ///< code, table: lines or rows that are not shown
    bool closed = true; ///< nothing more can come to this block

    QString imageUrl; ///< as written; may be loaded only when it is https
    QString alt;

    int quoteDepth = 0;
    int listDepth = 0;
    int indent = 0;        ///< unscaled, up to the block's own text
    QList<int> bars;       ///< unscaled places of the quote bars that begin here
    QList<int> joinedBars; ///< of those that go on from the block above
    int space = 0;         ///< unscaled, to the block above
    QString marker;        ///< "•" or "3." on the first block of a list item
    bool ordered = false;
    int number = 0;
    Task task = Task::None;

    bool operator==(const MarkdownBlock &) const = default;
};

/// What keeps every block, and so every single layout, small.
struct MarkdownLimits {
    static constexpr qsizetype line = 2000;      ///< characters of one line before it is taken in pieces
    static constexpr qsizetype paragraph = 3000; ///< characters of one paragraph before it is cut
    static constexpr int codeLines = 200;        ///< lines of code shown at first
    static constexpr qsizetype code = 16'000;    ///< characters of code shown at first
    static constexpr int tableRows = 50;         ///< rows shown at first
    static constexpr int depth = 16;             ///< quotes and lists inside each other; deeper marks are text
    static constexpr int images = 20;            ///< of one paragraph
};

} // namespace lmp
