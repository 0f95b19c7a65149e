#pragma once

#include "MarkdownSource.h"

#include <optional>

namespace lmp {

/// Finds the blocks of a Markdown text that arrives in pieces, wherever it is cut.
///
/// It goes line by line, as CommonMark describes it (with tables and without raw HTML and reference definitions, which
/// would act on blocks far above), so what a piece costs depends on the piece alone. The unfinished last line is taken
/// provisionally and taken back when more arrives. A value for one thread. Cannot fail: every text is Markdown.
class MarkdownBlockParser {
public:
    void append(QStringView piece);
    /// The end of the text as far as is known: what is open is closed, the last line counts as it is. Should more
    /// arrive after all, it goes on where the text ended.
    void finish();

    [[nodiscard]] const QList<MarkdownSource> &blocks() const { return m_blocks; }
    /// How many of the blocks no further piece can change.
    [[nodiscard]] qsizetype settled() const { return m_settled; }

private:
    enum class Leaf { None, Paragraph, Fence, Indented, Table };

    struct Container {
        MarkdownNesting nesting;
        int content = 0;      ///< list item: columns of white space its lines begin with
        int number = 0;       ///< list item
        bool ordered = false; ///< list item
        bool marked = false;  ///< list item: a block carries its bullet
        bool empty = true;    ///< nothing inside yet
        QChar list;           ///< the mark of the list that is being continued inside, null when none
        int next = 0;         ///< the number its next item gets
    };

    struct State {
        QList<Container> containers{Container()}; ///< the text itself first
        Leaf leaf = Leaf::None;
        line::Fence fence;
        int fenceIndent = 0;
        QString blankCode;  ///< blank lines of indented code, part of it only if more code comes
        bool blank = false; ///< the line before was blank
        bool cut = false;   ///< the line goes on that was taken in part
        int ids = 0;
    };

    /// What it takes to undo the provisional line, or the end.
    struct Undo {
        State state;
        qsizetype blocks = 0;
        std::optional<MarkdownSource> last = {}; ///< whole where more than its text may change
        qsizetype text = 0;
        int lines = 0;
        bool closed = false;
    };

    [[nodiscard]] Undo undo() const;
    void takeBack();
    void takePending();
    void takeLine(QStringView text);
    void takeRestOfLine(QStringView text);
    void takeBlocks(LineCursor &cursor, qsizetype held);
    bool takeLeaf(LineCursor &cursor, qsizetype held, bool inParagraph);
    bool takeCode(LineCursor &cursor, qsizetype held);
    bool takeUnderline(QStringView text);
    bool takeDelimiters(QStringView text);
    bool openContainer(LineCursor &cursor, qsizetype &held, bool inParagraph);
    void takeText(LineCursor &cursor);
    [[nodiscard]] qsizetype matched(LineCursor &cursor) const;

    MarkdownSource &open(MarkdownBlock::Kind kind);
    void closeLeaf();
    void closeContainers(qsizetype keep);
    void push(Container container, QChar list);
    void appendLine(QStringView text);
    void appendParagraph(QStringView text, bool newLine);

    QList<MarkdownSource> m_blocks;
    qsizetype m_settled = 0;
    State m_state;
    QString m_pending; ///< the line whose end has not arrived
    std::optional<Undo> m_undo;
};

} // namespace lmp
