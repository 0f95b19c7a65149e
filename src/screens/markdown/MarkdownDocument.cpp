#include "MarkdownDocument.h"

#include "MarkdownInline.h"

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using Kind = MarkdownBlock::Kind;
using Task = MarkdownBlock::Task;

// Lengths of the design, unscaled.
constexpr int quoteIndent = 16;
constexpr int listIndent = 24;
constexpr int deepestIndent = 8 * listIndent;
constexpr int aboveHeading = 20;
constexpr int betweenHeadings = 12;
constexpr int betweenBlocks = 12;
constexpr int betweenItems = 4;
constexpr int insideList = 8;

/// How much more code one wish for more shows.
constexpr int moreLines = 1000;
constexpr qsizetype charactersPerLine = MarkdownLimits::code / MarkdownLimits::codeLines;

Task takeTask(QStringView &text) {
    if (text.size() < 4 || text[0] != u'[' || text[2] != u']' || !text[3].isSpace())
        return Task::None;
    const QChar mark = text[1];
    if (mark != u' ' && mark != u'x' && mark != u'X')
        return Task::None;
    text = text.sliced(4);
    return mark == u' ' ? Task::Open : Task::Done;
}

bool inList(const MarkdownSource &source) {
    return !source.around.isEmpty() && !source.around.last().quote;
}

int spaceBetween(const MarkdownSource &above, const MarkdownSource &below) {
    if (below.goesOn)
        return 0;
    if (below.kind == Kind::Heading)
        return above.kind == Kind::Heading ? betweenHeadings : aboveHeading;
    if (inList(below) && (inList(above) || below.marked))
        return below.marked && !below.blankBefore && inList(above) ? betweenItems : insideList;
    return betweenBlocks;
}

} // namespace

void MarkdownDocument::setText(QStringView text) {
    *this = MarkdownDocument();
    m_parser.append(text);
    finish();
}

void MarkdownDocument::append(QStringView piece) {
    m_parser.append(piece);
    update();
}

void MarkdownDocument::finish() {
    m_parser.finish();
    update();
    // The last line may turn out to be another, and with it what the table is.
    m_rows = Rows();
}

QString MarkdownDocument::source(qsizetype block) const {
    const MarkdownSource &source = m_parser.blocks().at(m_sources.at(block));
    return source.kind == Kind::Table ? source.header + u'\n' + source.text : source.text;
}

void MarkdownDocument::expand(qsizetype block) {
    const qsizetype source = m_sources.at(block);
    const bool table = m_parser.blocks().at(source).kind == Kind::Table;
    show(source, m_shown.value(source, 0) + (table ? MarkdownTable::rowsMore(m_blocks.at(block).columns) : moreLines));
}

void MarkdownDocument::collapse(qsizetype block) {
    show(m_sources.at(block), 0);
}

/// Only code and tables hide anything, and each makes one block, so that no other moves.
void MarkdownDocument::show(qsizetype source, int lines) {
    const qsizetype block = m_sources.indexOf(source);
    const Kind kind = m_blocks.at(block).kind;
    m_changedFrom = m_blocks.size();
    if (kind != Kind::Code && kind != Kind::Table)
        return;
    m_shown.insert(source, lines);
    m_rows = Rows();
    make(source);
    m_sources.removeLast();
    m_blocks[block] = m_blocks.takeLast();
    m_changedFrom = block;
}

void MarkdownDocument::update() {
    m_blocks.remove(m_settledBlocks, m_blocks.size() - m_settledBlocks);
    m_sources.remove(m_settledBlocks, m_sources.size() - m_settledBlocks);
    m_changedFrom = m_settledBlocks;
    for (qsizetype source = m_settledSources; source < m_parser.blocks().size(); ++source) {
        make(source);
        if (source < m_parser.settled()) {
            m_settledSources = source + 1;
            m_settledBlocks = m_blocks.size();
        }
    }
}

void MarkdownDocument::make(qsizetype index) {
    const MarkdownSource &source = m_parser.blocks()[index];
    MarkdownBlock block;
    block.kind = source.kind;
    block.closed = source.closed;
    place(block, index);
    switch (source.kind) {
    case Kind::Code:
        makeCode(std::move(block), source, m_shown.value(index, 0));
        break;
    case Kind::Table:
        makeTable(std::move(block), source, index, m_shown.value(index, 0));
        break;
    case Kind::Rule:
        m_blocks += std::move(block);
        break;
    default:
        makeText(std::move(block), source, index);
    }
    m_sources.resize(m_blocks.size(), index);
}

void MarkdownDocument::makeText(MarkdownBlock block, const MarkdownSource &source, qsizetype index) {
    QStringView text = source.text;
    if (source.marked && source.kind == Kind::Paragraph)
        block.task = takeTask(text);
    MarkdownInline made = MarkdownInline::of(text);
    block.level = source.level;
    block.text = std::move(made.text);
    block.links = std::move(made.links);
    if (!made.picturesOnly)
        m_blocks += block;
    const qsizetype count = std::min<qsizetype>(made.pictures.size(), MarkdownLimits::images);
    for (qsizetype i = 0; i < count; ++i) {
        MarkdownBlock image;
        image.kind = Kind::Image;
        image.closed = block.closed;
        place(image, index);
        if (i > 0 || !made.picturesOnly) {
            image.marker.clear();
            image.space = insideList;
            image.joinedBars += std::exchange(image.bars, {});
        }
        image.imageUrl = made.pictures[i].url;
        image.alt = made.pictures[i].alt;
        m_blocks += std::move(image);
    }
}

void MarkdownDocument::makeCode(MarkdownBlock block, const MarkdownSource &source, int shown) {
    const int most = MarkdownLimits::codeLines + shown;
    const QStringView text = QStringView(source.text).left(most * charactersPerLine);
    qsizetype end = -1;
    int lines = 0;
    while (lines < most) {
        const qsizetype feed = text.indexOf(u'\n', end + 1);
        ++lines;
        end = feed < 0 ? text.size() : feed;
        if (feed < 0)
            break;
    }
    if (end < source.text.size() && end > 0 && source.text[end - 1].isHighSurrogate())
        --end;
    block.language = source.language;
    block.code = source.text.first(end);
    // What is read here must be what runs: what would make it look like something else stands there to be seen.
    std::ranges::replace_if(block.code, &MarkdownInline::turnsDirection, QChar(QChar::ReplacementCharacter));
    block.lines = source.lines;
    // A last line that is shown in part is hidden in part.
    block.hidden = end == source.text.size() ? 0 : std::max(1, source.lines - lines);
    m_blocks += std::move(block);
}

void MarkdownDocument::makeTable(MarkdownBlock block, const MarkdownSource &source, qsizetype index, int shown) {
    const int most = MarkdownTable::rowsShown(source.columns.size()) + shown;
    if (m_rows.source != index) {
        m_rows = Rows{.source = index};
        MarkdownTable::addHeader(m_rows.made, source.header, source.columns);
    }
    QStringView rest = QStringView(source.text).sliced(m_rows.end);
    for (qsizetype feed = 0; m_rows.count < most && (feed = rest.indexOf(u'\n')) >= 0; ++m_rows.count) {
        MarkdownTable::addRow(m_rows.made, rest.first(feed), source.columns);
        m_rows.end += feed + 1;
        rest = rest.sliced(feed + 1);
    }
    const bool last = m_rows.count < most && m_rows.count < source.lines;
    MarkdownTable::Rows rows = m_rows.made;
    if (last)
        MarkdownTable::addRow(rows, rest, source.columns);
    block.text = MarkdownTable::table(rows.html);
    block.links = std::move(rows.links);
    block.lines = source.lines;
    block.columns = int(source.columns.size());
    block.hidden = source.lines - m_rows.count - (last ? 1 : 0);
    m_blocks += std::move(block);
}

void MarkdownDocument::place(MarkdownBlock &block, qsizetype index) const {
    const MarkdownSource &source = m_parser.blocks()[index];
    static const MarkdownSource nothing;
    const MarkdownSource &above = index > 0 ? m_parser.blocks()[index - 1] : nothing;
    block.space = index > 0 ? spaceBetween(above, source) : 0;
    bool joined = true;
    for (qsizetype i = 0; i < source.around.size(); ++i) {
        const MarkdownNesting &nesting = source.around[i];
        joined = joined && i < above.around.size() && above.around[i].id == nesting.id;
        if (nesting.quote) {
            (joined ? block.joinedBars : block.bars) += block.indent;
            ++block.quoteDepth;
        } else {
            ++block.listDepth;
        }
        block.indent = std::min(block.indent + (nesting.quote ? quoteIndent : listIndent), deepestIndent);
    }
    if (!source.marked)
        return;
    block.ordered = source.ordered;
    block.number = source.number;
    block.marker = source.ordered ? QString::number(source.number) + u'.' : u"•"_s;
}

} // namespace lmp
