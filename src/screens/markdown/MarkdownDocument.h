#pragma once

#include "MarkdownBlockParser.h"
#include "MarkdownTable.h"

#include <QHash>

namespace lmp {

/// A Markdown text as the blocks that are drawn, growing as the text arrives.
///
/// `append` works on the last open blocks alone; all before stay as they are. However a text is cut into pieces, after
/// `finish` the blocks are those of the whole text; while it grows, a last line that may still become anything waits.
/// Reference definitions and raw HTML are no Markdown here: both are shown as they are written. A value for one thread.
/// Cannot fail: every text is Markdown, and MarkdownLimits keeps each block small whatever arrives.
class MarkdownDocument {
public:
    /// Another text, whole.
    void setText(QStringView text);
    void append(QStringView piece);
    /// The end of the text as far as is known: the last line means what it says as it stands.
    void finish();

    [[nodiscard]] const QList<MarkdownBlock> &blocks() const { return m_blocks; }
    /// The first block that the last change touched.
    [[nodiscard]] qsizetype changedFrom() const { return m_changedFrom; }

    /// All of the code of a code block, the text of any other block as it was written.
    [[nodiscard]] QString source(qsizetype block) const;
    /// Shows more of a block that hides lines or rows.
    void expand(qsizetype block);
    /// Shows as much of a block as at first.
    void collapse(qsizetype block);

private:
    struct Rows {
        qsizetype source = -1;
        qsizetype end = 0; ///< of the table's text that `made` holds
        int count = 0;
        MarkdownTable::Rows made = {};
    };

    void update();
    void show(qsizetype source, int lines);
    void make(qsizetype source);
    void makeText(MarkdownBlock block, const MarkdownSource &source, qsizetype index);
    void makeCode(MarkdownBlock block, const MarkdownSource &source, int shown);
    void makeTable(MarkdownBlock block, const MarkdownSource &source, qsizetype index, int shown);
    void place(MarkdownBlock &block, qsizetype index) const;

    MarkdownBlockParser m_parser;
    QList<MarkdownBlock> m_blocks;
    QList<qsizetype> m_sources; ///< which of the parser's blocks each block is made of
    qsizetype m_settledSources = 0;
    qsizetype m_settledBlocks = 0;
    qsizetype m_changedFrom = 0;
    QHash<qsizetype, int> m_shown; ///< source -> lines or rows, where not as many as at first
    Rows m_rows;                   ///< of the open table, so that a new row does not cost all the others
};

} // namespace lmp
