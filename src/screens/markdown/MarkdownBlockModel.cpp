#include "MarkdownBlockModel.h"

#include <algorithm>

namespace lmp {

namespace {

using Kind = MarkdownBlock::Kind;
using Task = MarkdownBlock::Task;

static_assert(int(Kind::Paragraph) == MarkdownBlockModel::Paragraph && int(Kind::Rule) == MarkdownBlockModel::Rule);
static_assert(int(Kind::Code) == MarkdownBlockModel::Code && int(Kind::Table) == MarkdownBlockModel::Table);
static_assert(int(Task::None) == MarkdownBlockModel::NoTask && int(Task::Done) == MarkdownBlockModel::DoneTask);

QVariant valueOf(const MarkdownBlock &block, int role) {
    switch (role) {
    case MarkdownBlockModel::KindRole:
        return int(block.kind);
    case Qt::DisplayRole:
    case MarkdownBlockModel::TextRole:
        return block.text;
    case MarkdownBlockModel::LevelRole:
        return block.level;
    case MarkdownBlockModel::LanguageRole:
        return block.language;
    case MarkdownBlockModel::CodeRole:
        return block.code;
    case MarkdownBlockModel::LinesRole:
        return block.lines;
    case MarkdownBlockModel::HiddenRole:
        return block.hidden;
    case MarkdownBlockModel::ColumnsRole:
        return block.columns;
    case MarkdownBlockModel::ClosedRole:
        return block.closed;
    case MarkdownBlockModel::ImageUrlRole:
        return block.imageUrl;
    case MarkdownBlockModel::AltRole:
        return block.alt;
    case MarkdownBlockModel::QuoteDepthRole:
        return block.quoteDepth;
    case MarkdownBlockModel::ListDepthRole:
        return block.listDepth;
    case MarkdownBlockModel::IndentRole:
        return block.indent;
    case MarkdownBlockModel::BarsRole:
        return QVariant::fromValue(block.bars);
    case MarkdownBlockModel::JoinedBarsRole:
        return QVariant::fromValue(block.joinedBars);
    case MarkdownBlockModel::SpaceRole:
        return block.space;
    case MarkdownBlockModel::MarkerRole:
        return block.marker;
    case MarkdownBlockModel::OrderedRole:
        return block.ordered;
    case MarkdownBlockModel::NumberRole:
        return block.number;
    case MarkdownBlockModel::TaskRole:
        return int(block.task);
    default:
        return {};
    }
}

bool drawnAlike(const MarkdownBlock &a, const MarkdownBlock &b) {
    const auto text = [](Kind kind) {
        return kind == Kind::Paragraph || kind == Kind::Heading;
    };
    return a.kind == b.kind || (text(a.kind) && text(b.kind));
}

/// The roles by which two rows of a growing text differ.
QList<int> difference(const MarkdownBlock &before, const MarkdownBlock &after) {
    QList<int> roles;
    for (int role = MarkdownBlockModel::KindRole; role <= MarkdownBlockModel::TaskRole; ++role) {
        if (valueOf(before, role) != valueOf(after, role))
            roles += role;
    }
    return roles;
}

} // namespace

void MarkdownBlockModel::setText(const QString &text) {
    m_document.setText(text);
    show();
}

void MarkdownBlockModel::append(const QString &piece) {
    m_document.append(piece);
    show();
}

void MarkdownBlockModel::finish() {
    m_document.finish();
    show();
}

QString MarkdownBlockModel::source(int row) const {
    return m_document.source(row);
}

void MarkdownBlockModel::expand(int row) {
    m_document.expand(row);
    show();
}

void MarkdownBlockModel::collapse(int row) {
    m_document.collapse(row);
    show();
}

int MarkdownBlockModel::nextLink(int row, int position) const {
    const auto &links = m_rows.at(row).links;
    const auto found = std::ranges::find_if(links, [=](const MarkdownLink &link) { return link.start > position; });
    return found == links.end() ? -1 : found->start;
}

int MarkdownBlockModel::previousLink(int row, int position) const {
    int start = -1;
    for (const MarkdownLink &link : m_rows.at(row).links) {
        if (link.start < position)
            start = link.start;
    }
    return start;
}

int MarkdownBlockModel::linkEnd(int row, int start) const {
    const MarkdownLink *link = linkAt(row, start);
    return link ? link->start + link->length : start;
}

QString MarkdownBlockModel::linkUrl(int row, int start) const {
    const MarkdownLink *link = linkAt(row, start);
    return link ? link->url : QString();
}

const MarkdownLink *MarkdownBlockModel::linkAt(int row, int start) const {
    const auto &links = m_rows.at(row).links;
    const auto found = std::ranges::find(links, start, &MarkdownLink::start);
    return found == links.end() ? nullptr : &*found;
}

int MarkdownBlockModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant MarkdownBlockModel::data(const QModelIndex &index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    return valueOf(m_rows.at(index.row()), role);
}

QHash<int, QByteArray> MarkdownBlockModel::roleNames() const {
    return {{KindRole, "kind"},
            {TextRole, "text"},
            {LevelRole, "level"},
            {LanguageRole, "language"},
            {CodeRole, "code"},
            {LinesRole, "lines"},
            {HiddenRole, "hidden"},
            {ColumnsRole, "columns"},
            {ClosedRole, "closed"},
            {ImageUrlRole, "imageUrl"},
            {AltRole, "alt"},
            {QuoteDepthRole, "quoteDepth"},
            {ListDepthRole, "listDepth"},
            {IndentRole, "indent"},
            {BarsRole, "bars"},
            {JoinedBarsRole, "joinedBars"},
            {SpaceRole, "space"},
            {MarkerRole, "marker"},
            {OrderedRole, "ordered"},
            {NumberRole, "number"},
            {TaskRole, "task"}};
}

/// Announces what the last change of the document did to the rows. A row that is drawn by another kind of item from now
/// on is another row.
void MarkdownBlockModel::show() {
    const QList<MarkdownBlock> &blocks = m_document.blocks();
    qsizetype kept = std::min(m_document.changedFrom(), m_rows.size());
    for (; kept < std::min(blocks.size(), m_rows.size()) && drawnAlike(m_rows[kept], blocks[kept]); ++kept) {
        const QList<int> roles = difference(m_rows[kept], blocks[kept]);
        m_rows[kept] = blocks[kept];
        if (!roles.isEmpty())
            Q_EMIT dataChanged(index(int(kept)), index(int(kept)), roles);
    }
    if (kept < m_rows.size()) {
        beginRemoveRows({}, int(kept), int(m_rows.size()) - 1);
        m_rows.resize(kept);
        endRemoveRows();
    }
    if (kept < blocks.size()) {
        beginInsertRows({}, int(kept), int(blocks.size()) - 1);
        m_rows += blocks.sliced(kept);
        endInsertRows();
    }
}

} // namespace lmp
