#include "MarkdownBlockParser.h"

#include <QTextBoundaryFinder>

namespace lmp {

namespace {

using Kind = MarkdownBlock::Kind;

/// Columns of white space that make code of what follows.
constexpr int codeIndent = 4;
/// How much more than a line's limit must be there before it is cut, so that the cut sees whole characters around it
/// and falls on the same place whatever has arrived by then.
constexpr qsizetype slack = 64;

QStringView withoutReturn(QStringView line) {
    return line.endsWith(u'\r') ? line.chopped(1) : line;
}

/// Where to cut a line that begins with `text`: after a sentence or a word if one ends near the limit, between two
/// characters (as a person counts them) otherwise.
qsizetype placeToCut(QStringView text) {
    constexpr QStringView ends = u"。！？；，、.!?;, ";
    for (qsizetype at = MarkdownLimits::line; at > MarkdownLimits::line - 5 * slack; --at) {
        if (ends.contains(text[at - 1]))
            return at;
    }
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    finder.setPosition(MarkdownLimits::line);
    const qsizetype at = finder.isAtBoundary() ? MarkdownLimits::line : finder.toPreviousBoundary();
    return at > MarkdownLimits::line / 2 ? at : MarkdownLimits::line;
}

} // namespace

void MarkdownBlockParser::append(QStringView piece) {
    takeBack();
    m_pending += piece;
    takePending();
    m_settled = m_state.leaf == Leaf::None ? m_blocks.size() : m_blocks.size() - 1;
    if (m_pending.isEmpty() || (!m_state.cut && line::isUndecided(m_pending)))
        return;
    m_undo = undo();
    takeLine(withoutReturn(m_pending));
}

void MarkdownBlockParser::finish() {
    takeBack();
    m_undo = undo();
    if (!m_blocks.isEmpty())
        m_undo->last = m_blocks.last();
    if (!m_pending.isEmpty())
        takeLine(withoutReturn(m_pending));
    m_state.cut = false;
    closeLeaf();
    closeContainers(1);
}

MarkdownBlockParser::Undo MarkdownBlockParser::undo() const {
    Undo undo{.state = m_state, .blocks = m_blocks.size()};
    if (!m_blocks.isEmpty()) {
        undo.text = m_blocks.last().text.size();
        undo.lines = m_blocks.last().lines;
        undo.closed = m_blocks.last().closed;
    }
    return undo;
}

/// An unfinished line only adds to the last block's text, never makes something else of it: such lines wait until they
/// are whole.
void MarkdownBlockParser::takeBack() {
    if (!m_undo)
        return;
    m_blocks.remove(m_undo->blocks, m_blocks.size() - m_undo->blocks);
    if (m_undo->last) {
        m_blocks.last() = std::move(*m_undo->last);
    } else if (!m_blocks.isEmpty()) {
        MarkdownSource &last = m_blocks.last();
        last.text.truncate(m_undo->text);
        last.lines = m_undo->lines;
        last.closed = m_undo->closed;
    }
    m_state = std::move(m_undo->state);
    m_undo.reset();
}

void MarkdownBlockParser::takePending() {
    const QStringView text = m_pending;
    qsizetype at = 0;
    while (true) {
        const qsizetype feed = text.indexOf(u'\n', at);
        const qsizetype size = (feed < 0 ? text.size() : feed) - at;
        if (size >= MarkdownLimits::line + slack) {
            const qsizetype cut = placeToCut(text.sliced(at, MarkdownLimits::line + slack));
            takeLine(text.sliced(at, cut));
            m_state.cut = true;
            at += cut;
        } else if (feed >= 0) {
            takeLine(withoutReturn(text.sliced(at, size)));
            m_state.cut = false;
            at = feed + 1;
        } else {
            break;
        }
    }
    m_pending.remove(0, at);
}

void MarkdownBlockParser::takeLine(QStringView text) {
    if (m_state.cut)
        return takeRestOfLine(text);
    LineCursor cursor(text);
    const qsizetype held = matched(cursor);
    if (takeCode(cursor, held))
        return;
    if (cursor.blank()) {
        closeContainers(held);
        closeLeaf();
        m_state.blank = true;
        return;
    }
    takeBlocks(cursor, held);
    m_state.blank = false;
}

/// A line too long to be taken at once: what comes after its first part cannot begin anything.
void MarkdownBlockParser::takeRestOfLine(QStringView text) {
    if (m_state.leaf == Leaf::Paragraph) {
        appendParagraph(text, false);
    } else if (m_state.leaf == Leaf::Fence || m_state.leaf == Leaf::Indented) {
        m_blocks.last().text += text;
    } else if (!text.trimmed().isEmpty()) {
        closeLeaf();
        open(Kind::Paragraph).goesOn = true;
        m_state.leaf = Leaf::Paragraph;
        m_blocks.last().text = text.toString();
    }
}

/// How many of the open containers go on in this line; the cursor passes their marks.
qsizetype MarkdownBlockParser::matched(LineCursor &cursor) const {
    for (qsizetype i = 1; i < m_state.containers.size(); ++i) {
        const Container &container = m_state.containers[i];
        if (container.nesting.quote) {
            if (cursor.indent() >= codeIndent || cursor.first() != u'>')
                return i;
            cursor.take(1);
            cursor.skip(1);
        } else if (cursor.blank() ? !container.empty : cursor.indent() >= container.content) {
            cursor.skip(container.content);
        } else {
            return i;
        }
    }
    return m_state.containers.size();
}

bool MarkdownBlockParser::takeCode(LineCursor &cursor, qsizetype held) {
    if (held != m_state.containers.size())
        return false;
    if (m_state.leaf == Leaf::Fence) {
        if (cursor.indent() < codeIndent && line::closes(m_state.fence, cursor.bare())) {
            closeLeaf();
        } else {
            cursor.skip(m_state.fenceIndent);
            appendLine(cursor.rest());
        }
        m_state.blank = false;
        return true;
    }
    if (m_state.leaf != Leaf::Indented)
        return false;
    if (!cursor.blank() && cursor.indent() < codeIndent) {
        closeLeaf();
        return false;
    }
    m_state.blank = cursor.blank();
    cursor.skip(codeIndent);
    if (m_state.blank) {
        m_state.blankCode += u'\n' + cursor.rest();
        return true;
    }
    MarkdownSource &code = m_blocks.last();
    code.text += m_state.blankCode;
    code.lines += int(m_state.blankCode.count(u'\n'));
    m_state.blankCode.clear();
    appendLine(cursor.rest());
    return true;
}

void MarkdownBlockParser::takeBlocks(LineCursor &cursor, qsizetype held) {
    const bool lazy = m_state.leaf == Leaf::Paragraph && held < m_state.containers.size();
    bool opened = false;
    while (cursor.indent() < codeIndent) {
        const bool inParagraph = m_state.leaf == Leaf::Paragraph && held == m_state.containers.size();
        if (takeLeaf(cursor, held, inParagraph))
            return;
        if (!openContainer(cursor, held, inParagraph))
            break;
        opened = true;
    }
    if (cursor.blank())
        return;
    if (lazy && !opened)
        return appendParagraph(cursor.bare(), true);
    closeContainers(held);
    takeText(cursor);
}

/// A block that is told by its first line, or that makes something else of the paragraph above.
bool MarkdownBlockParser::takeLeaf(LineCursor &cursor, qsizetype held, bool inParagraph) {
    const QStringView text = cursor.bare();
    const auto begin = [&](Kind kind) -> MarkdownSource & {
        closeContainers(held);
        closeLeaf();
        return open(kind);
    };
    if (const auto heading = line::heading(text)) {
        MarkdownSource &block = begin(Kind::Heading);
        block.level = heading->level;
        block.text = heading->text.toString();
        block.closed = true;
        return true;
    }
    if (auto fence = line::fence(text)) {
        begin(Kind::Code).language = fence->language;
        m_state.leaf = Leaf::Fence;
        m_state.fence = std::move(*fence);
        m_state.fenceIndent = cursor.indent();
        return true;
    }
    if (inParagraph && (takeUnderline(text) || takeDelimiters(text)))
        return true;
    if (line::isRule(text)) {
        begin(Kind::Rule).closed = true;
        return true;
    }
    return false;
}

bool MarkdownBlockParser::takeUnderline(QStringView text) {
    const int level = line::underline(text);
    if (level == 0)
        return false;
    m_blocks.last().kind = Kind::Heading;
    m_blocks.last().level = level;
    closeLeaf();
    return true;
}

/// The row under a table's header: the paragraph's last line was that header.
bool MarkdownBlockParser::takeDelimiters(QStringView text) {
    const auto columns = line::delimiters(text);
    if (!columns)
        return false;
    const QString paragraph = m_blocks.last().text;
    const qsizetype before = paragraph.lastIndexOf(u'\n');
    const QString header = paragraph.sliced(before + 1);
    if (!header.contains(u'|') || line::cells(header).size() != columns->size())
        return false;
    if (before >= 0) {
        m_blocks.last().text.truncate(before);
        closeLeaf();
        open(Kind::Table);
    }
    MarkdownSource &table = m_blocks.last();
    table.kind = Kind::Table;
    table.text.clear();
    table.header = header;
    table.columns = *columns;
    m_state.leaf = Leaf::Table;
    return true;
}

bool MarkdownBlockParser::openContainer(LineCursor &cursor, qsizetype &held, bool inParagraph) {
    if (held > MarkdownLimits::depth)
        return false;
    Container container;
    if (cursor.first() == u'>') {
        closeContainers(held++);
        container.nesting.quote = true;
        push(container, QChar());
        cursor.take(1);
        cursor.skip(1);
        return true;
    }
    const auto bullet = line::bullet(cursor);
    // "2." in the middle of a paragraph is a sentence that happened to begin a line.
    if (!bullet || (inParagraph && (bullet->bare || (bullet->ordered() && bullet->number != 1))))
        return false;
    closeContainers(held++);
    Container &parent = m_state.containers.last();
    container.content = cursor.indent() + bullet->width + bullet->spaces;
    container.ordered = bullet->ordered();
    container.number = parent.list == bullet->mark ? parent.next : bullet->number;
    push(container, bullet->mark);
    cursor.take(bullet->width);
    cursor.skip(bullet->spaces);
    return true;
}

void MarkdownBlockParser::takeText(LineCursor &cursor) {
    if (m_state.leaf == Leaf::Table) {
        appendLine(cursor.bare());
    } else if (m_state.leaf == Leaf::Paragraph) {
        appendParagraph(cursor.bare(), true);
    } else if (cursor.indent() >= codeIndent) {
        cursor.skip(codeIndent);
        open(Kind::Code);
        m_state.leaf = Leaf::Indented;
        appendLine(cursor.rest());
    } else {
        open(Kind::Paragraph).text = cursor.bare().toString();
        m_state.leaf = Leaf::Paragraph;
    }
}

MarkdownSource &MarkdownBlockParser::open(Kind kind) {
    MarkdownSource block;
    block.kind = kind;
    block.blankBefore = m_state.blank;
    Container *item = nullptr;
    for (Container &container : m_state.containers) {
        container.empty = false;
        if (container.nesting.id == 0)
            continue;
        block.around += container.nesting;
        if (!container.nesting.quote)
            item = &container;
    }
    if (item && !item->marked) {
        item->marked = block.marked = true;
        block.ordered = item->ordered;
        block.number = item->number;
    }
    m_state.containers.last().list = QChar();
    m_blocks += std::move(block);
    return m_blocks.last();
}

void MarkdownBlockParser::closeLeaf() {
    if (m_state.leaf == Leaf::None)
        return;
    m_blocks.last().closed = true;
    m_state.leaf = Leaf::None;
    m_state.blankCode.clear();
}

/// Closes all but the first `keep` containers, and with them the leaf inside.
void MarkdownBlockParser::closeContainers(qsizetype keep) {
    if (m_state.containers.size() > keep)
        closeLeaf();
    for (; m_state.containers.size() > keep; m_state.containers.removeLast()) {
        // An item with nothing in it still has its bullet.
        if (const Container &last = m_state.containers.last(); !last.nesting.quote && !last.marked)
            open(Kind::Paragraph).closed = true;
    }
}

void MarkdownBlockParser::push(Container container, QChar list) {
    closeLeaf();
    if (!container.nesting.quote) {
        // "- 1. text": the outer bullet stands alone.
        const auto outer = std::find_if(m_state.containers.crbegin(), m_state.containers.crend(),
                                        [](const Container &one) { return !one.nesting.quote; });
        if (outer->nesting.id != 0 && !outer->marked)
            open(Kind::Paragraph).closed = true;
    }
    Container &parent = m_state.containers.last();
    parent.empty = false;
    parent.list = list;
    parent.next = container.number + 1;
    container.nesting.id = ++m_state.ids;
    m_state.containers += container;
}

void MarkdownBlockParser::appendLine(QStringView text) {
    MarkdownSource &block = m_blocks.last();
    if (block.lines++ > 0)
        block.text += u'\n';
    block.text += text;
}

void MarkdownBlockParser::appendParagraph(QStringView text, bool newLine) {
    if (m_blocks.last().text.size() + text.size() >= MarkdownLimits::paragraph) {
        closeLeaf();
        open(Kind::Paragraph).goesOn = true;
        m_state.leaf = Leaf::Paragraph;
    } else if (newLine) {
        m_blocks.last().text += u'\n';
    }
    m_blocks.last().text += text;
}

} // namespace lmp
