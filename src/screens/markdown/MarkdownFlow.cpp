#include "MarkdownFlow.h"

#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

using Kind = MarkdownBlock::Kind;

// Lengths of the design, as the rows are drawn.
constexpr qreal letterHeight = 15;
constexpr qreal textLine = 25;
constexpr qreal codeLine = 20;
constexpr qreal codeFrame = 48;
constexpr qreal tableLine = 33;
constexpr qreal imageHeight = 100;
constexpr qreal ruleHeight = 9;
/// How narrow a letter is beside a Chinese character.
constexpr qreal narrow = 0.55;

/// Items are painted only this near to the sight.
constexpr qreal paintMargin = 200;
/// Heights of the sight: rows this near have items, and those further than the other lose theirs.
constexpr qreal nearSight = 1;
constexpr qreal farFromSight = 3;

/// Lines of `room` Chinese characters that rich text fills.
qreal linesOf(const QString &richText, qreal room) {
    qreal lines = 0, used = 0;
    bool tag = false;
    for (qsizetype i = 0; i < richText.size(); ++i) {
        const QChar c = richText[i];
        if (c == u'<') {
            tag = true;
            if (QStringView(richText).sliced(i).startsWith(u"<br>"_s)) {
                lines += std::max(1.0, std::ceil(used / room));
                used = 0;
            }
        } else if (!tag) {
            used += c.unicode() >= 0x2e80 ? 1 : narrow;
        } else if (c == u'>') {
            tag = false;
        }
    }
    return lines + std::max(1.0, std::ceil(used / room));
}

} // namespace

MarkdownFlow::MarkdownFlow(QQuickItem *parent)
    : QQuickItem(parent) {
    connect(this, &MarkdownFlow::factorChanged, this, &MarkdownFlow::estimate);
}

MarkdownFlow::~MarkdownFlow() {
    // Their heights are nobody's business any more.
    for (const int row : m_made)
        m_rows[std::size_t(row)].item->disconnect(this);
}

void MarkdownFlow::setBlocks(MarkdownBlockModel *blocks) {
    if (m_blocks == blocks)
        return;
    if (m_blocks)
        m_blocks->disconnect(this);
    m_blocks = blocks;
    if (m_blocks) {
        m_roles = m_blocks->roleNames();
        // The indentation, bars and marker tell these already.
        for (const int role : {MarkdownBlockModel::QuoteDepthRole, MarkdownBlockModel::ListDepthRole,
                               MarkdownBlockModel::OrderedRole, MarkdownBlockModel::NumberRole})
            m_roles.remove(role);
        connect(m_blocks, &QAbstractItemModel::rowsInserted, this, &MarkdownFlow::insertRows);
        connect(m_blocks, &QAbstractItemModel::rowsRemoved, this, &MarkdownFlow::removeRows);
        connect(m_blocks, &QAbstractItemModel::dataChanged, this, &MarkdownFlow::updateRows);
    }
    startOver();
    Q_EMIT blocksChanged();
}

QQuickItem *MarkdownFlow::itemAt(int row) {
    if (row < 0 || row >= int(m_rows.size()) || !m_row)
        return nullptr;
    if (!m_rows[std::size_t(row)].item) {
        make(row);
        arrange();
    }
    return m_rows[std::size_t(row)].item;
}

bool MarkdownFlow::moveFocus(int from, int by) {
    for (int row = from + by; QQuickItem *item = itemAt(row); row += by) {
        auto *edit = item->property("edit").value<QQuickItem *>();
        if (edit && QMetaObject::invokeMethod(edit, "enter", Q_ARG(int, by)))
            return true;
    }
    return false;
}

void MarkdownFlow::reveal(QQuickItem *item, const QRectF &part) {
    QQuickItem *view = viewport();
    if (!view || !item)
        return;
    const QRectF seen = item->mapRectToItem(view, part);
    const qreal above = std::min(0.0, seen.top()), below = std::max(0.0, seen.bottom() - view->height());
    if (above < 0 || below > 0) {
        Q_EMIT moveAsked(above < 0 ? above : below);
        moveView(above < 0 ? above : below);
    }
}

void MarkdownFlow::componentComplete() {
    QQuickItem::componentComplete();
    startOver();
}

void MarkdownFlow::itemChange(ItemChange change, const ItemChangeData &data) {
    if (change == ItemSceneChange) {
        disconnect(m_frames);
        // What has moved since the last frame shows in this one; the margins hide that rows come a frame later.
        if (data.window)
            m_frames = connect(data.window, &QQuickWindow::afterAnimating, this, &MarkdownFlow::look);
    }
    QQuickItem::itemChange(change, data);
}

void MarkdownFlow::geometryChange(const QRectF &now, const QRectF &before) {
    QQuickItem::geometryChange(now, before);
    if (now.width() == before.width())
        return;
    for (const int row : m_made)
        m_rows[std::size_t(row)].item->setWidth(now.width());
    estimate();
}

void MarkdownFlow::updatePolish() {
    m_sight = sight();
    arrange();
    dropFar();
}

void MarkdownFlow::insertRows(const QModelIndex &, int first, int last) {
    // Only ever at the end.
    m_rows.resize(std::size_t(last) + 1);
    for (int row = first; row <= last; ++row)
        m_rows[std::size_t(row)].height = estimated(row);
    polish();
}

void MarkdownFlow::removeRows(const QModelIndex &, int first, int last) {
    for (int row = first; row <= last; ++row)
        drop(row);
    m_rows.resize(std::size_t(first));
    polish();
}

void MarkdownFlow::updateRows(const QModelIndex &first, const QModelIndex &last, const QList<int> &roles) {
    for (int row = first.row(); row <= last.row(); ++row) {
        Row &one = m_rows[std::size_t(row)];
        if (!one.item) {
            one.height = estimated(row);
            polish();
            continue;
        }
        for (const int role : roles) {
            if (m_roles.contains(role))
                one.item->setProperty(m_roles.value(role), m_blocks->index(row).data(role));
        }
    }
}

void MarkdownFlow::startOver() {
    for (int row = 0; row < int(m_rows.size()); ++row)
        drop(row);
    m_rows.clear();
    if (m_blocks && isComponentComplete() && m_blocks->rowCount() > 0) {
        insertRows({}, 0, m_blocks->rowCount() - 1);
        // Whoever lays this out wants to know the height now.
        updatePolish();
    }
}

/// Once a frame: whether other rows are in sight than before.
void MarkdownFlow::look() {
    if (!m_rows.empty() && isVisible() && sight() != m_sight)
        polish();
}

/// Gives the rows their places, and an item to those near sight.
void MarkdownFlow::arrange() {
    if (!m_row || !isComponentComplete())
        return;
    const bool few = qsizetype(m_rows.size()) <= fewRows;
    const qreal margin = nearSight * (m_sight.bottom - m_sight.top);
    const qreal begin = m_sight.top - margin, end = m_sight.bottom + margin;
    qreal top = 0, moved = 0;
    for (int row = 0; row < int(m_rows.size()); ++row) {
        Row &one = m_rows[std::size_t(row)];
        const qreal before = one.height;
        if (!one.item && (few || (top + one.height >= begin && top <= end)))
            make(row);
        if (one.item) {
            one.height = one.item->height();
            one.item->setY(top);
        }
        if (top + before <= m_sight.top)
            moved += one.height - before;
        one.top = top;
        top += one.height;
    }
    const bool inside = m_sight.top > 0 && m_sight.top < implicitHeight();
    setImplicitHeight(top);
    if (moved != 0 && inside) {
        Q_EMIT measuredAbove(moved);
        moveView(moved);
    }
}

void MarkdownFlow::moveView(qreal by) {
    QQuickItem *view = m_keepsPlace ? viewport() : nullptr;
    if (view)
        view->setProperty("contentY", view->property("contentY").toReal() + by);
}

void MarkdownFlow::make(int row) {
    QVariantMap properties{{u"index"_s, row}, {u"view"_s, QVariant::fromValue(this)}, {u"width"_s, width()}};
    const QModelIndex index = m_blocks->index(row);
    for (const auto &[role, name] : m_roles.asKeyValueRange())
        properties.insert(QString::fromLatin1(name), index.data(role));
    QObject *made = m_row->createWithInitialProperties(properties, m_row->creationContext());
    auto *item = qobject_cast<QQuickItem *>(made);
    if (!item) {
        delete made;
        return;
    }
    item->setParent(this);
    item->setParentItem(this);
    m_rows[std::size_t(row)].item = item;
    m_made.push_back(row);
    connect(item, &QQuickItem::heightChanged, this, &MarkdownFlow::polish);
}

void MarkdownFlow::drop(int row) {
    QQuickItem *item = std::exchange(m_rows[std::size_t(row)].item, nullptr);
    if (!item)
        return;
    std::erase(m_made, row);
    item->disconnect(this);
    item->setParentItem(nullptr);
    item->deleteLater();
}

/// Takes the items of rows that are far from sight, and keeps those from being painted that are not in it.
void MarkdownFlow::dropFar() {
    const bool few = qsizetype(m_rows.size()) <= fewRows;
    const qreal far = farFromSight * (m_sight.bottom - m_sight.top);
    for (const int row : std::vector<int>(m_made)) {
        const Row &one = m_rows[std::size_t(row)];
        const qreal above = m_sight.top - one.top - one.height, below = one.top - m_sight.bottom;
        if (hasKeyboard(one.item))
            one.item->setVisible(true);
        else if (!few && std::max(above, below) > far)
            drop(row);
        else
            one.item->setVisible(std::max(above, below) < paintMargin);
    }
}

/// All rows without items get the height to be expected at this width.
void MarkdownFlow::estimate() {
    for (int row = 0; row < int(m_rows.size()); ++row) {
        if (!m_rows[std::size_t(row)].item)
            m_rows[std::size_t(row)].height = estimated(row);
    }
    polish();
}

qreal MarkdownFlow::estimated(int row) const {
    const MarkdownBlock &block = m_blocks->block(row);
    const qreal room = std::max(1.0, width() / m_factor - block.indent) / letterHeight;
    qreal height = block.space;
    switch (block.kind) {
    case Kind::Paragraph:
    case Kind::Heading:
        height += linesOf(block.text, room) * textLine;
        break;
    case Kind::Code:
        height += codeFrame + qreal(block.code.count(u'\n') + 1) * codeLine;
        break;
    case Kind::Table:
        height += qreal(block.lines - block.hidden + 1) * tableLine;
        break;
    case Kind::Image:
        height += imageHeight;
        break;
    case Kind::Rule:
        height += ruleHeight;
        break;
    }
    return std::round(height * m_factor);
}

QQuickItem *MarkdownFlow::viewport() const {
    QQuickItem *item = parentItem();
    while (item && !item->inherits("QQuickFlickable"))
        item = item->parentItem();
    return item;
}

/// What of this item is in sight, in its own coordinates.
MarkdownFlow::Sight MarkdownFlow::sight() const {
    const QQuickItem *view = viewport();
    if (!view)
        view = window() ? window()->contentItem() : nullptr;
    if (!view)
        return {};
    const QRectF seen = view->mapRectToItem(this, QRectF(0, 0, view->width(), view->height()));
    return {seen.top(), seen.bottom()};
}

bool MarkdownFlow::hasKeyboard(const QQuickItem *item) const {
    const QQuickItem *focus = window() ? window()->activeFocusItem() : nullptr;
    return focus && (focus == item || item->isAncestorOf(focus));
}

} // namespace lmp
