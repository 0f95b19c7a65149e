#include "screens/gallery/ScreenAudit.h"

#include <QAccessible>
#include <QQuickItem>
#include <QQuickWindow>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// Rounding to whole pixels is no fault.
constexpr qreal slack = 1.5;
constexpr qreal leastTarget = 28;

bool is(const QQuickItem &item, const char *type) {
    return item.inherits(type);
}

/// The item's type and the beginning of its text, and where to look for it.
QString nameOf(const QQuickItem &item) {
    const auto typeName = [](const QQuickItem &one) {
        return QString::fromLatin1(one.metaObject()->className()).section(u"_QML"_s, 0, 0).section(u"_QMLTYPE"_s, 0, 0);
    };
    QString path = typeName(item);
    for (const auto *parent = item.parentItem(); parent && path.count(u'/') < 4; parent = parent->parentItem()) {
        if (!typeName(*parent).startsWith(u"QQuick"_s))
            path = typeName(*parent) + u'/' + path;
    }
    QString text = item.property("text").toString();
    text = text.mid(text.startsWith(u'<') ? text.indexOf(u"<p"_s) : 0).simplified();
    return text.isEmpty() ? path : path + u" \""_s + text.left(24) + u'"';
}

/// The text as it is painted, in the item's coordinates: it may be narrower or wider than the item.
QRectF paintedText(const QQuickItem &item) {
    const QSizeF size(item.property("contentWidth").toReal(), item.property("contentHeight").toReal());
    const auto padding = [&](const char *name) {
        return item.property(name).toReal();
    };
    const qreal freeWidth = item.width() - padding("leftPadding") - padding("rightPadding") - size.width();
    const qreal freeHeight = item.height() - padding("topPadding") - padding("bottomPadding") - size.height();
    const auto across = Qt::Alignment(item.property("effectiveHorizontalAlignment").toInt());
    const auto down = Qt::Alignment(item.property("verticalAlignment").toInt());
    QPointF at(padding("leftPadding"), padding("topPadding"));
    if (across & Qt::AlignRight)
        at.rx() += freeWidth;
    else if (across & Qt::AlignHCenter)
        at.rx() += freeWidth / 2;
    if (down & Qt::AlignBottom)
        at.ry() += freeHeight;
    else if (down & Qt::AlignVCenter)
        at.ry() += freeHeight / 2;
    return {at, size};
}

/// Whether a person can move what is in `item` about in it.
bool scrolls(const QQuickItem &item, bool across) {
    return is(item, "QQuickFlickable") && (across ? item.property("contentWidth").toReal() > item.width()
                                                  : item.property("contentHeight").toReal() > item.height());
}

const QQuickItem *scrollerOf(const QQuickItem &item, bool across) {
    for (const auto *parent = item.parentItem(); parent; parent = parent->parentItem()) {
        if (scrolls(*parent, across))
            return parent;
    }
    return nullptr;
}

QRectF placeOf(const QQuickItem &item, const QRectF &rect) {
    return item.mapRectToScene(rect);
}

} // namespace

QStringList ScreenAudit::faults(const QQuickWindow &window, qreal scale) {
    ScreenAudit audit(scale);
    const QRectF whole(QPointF(), window.contentItem()->size());
    audit.visit(*window.contentItem(), whole, nullptr);
    audit.findOverlaps();
    return audit.m_faults;
}

void ScreenAudit::visit(const QQuickItem &item, const QRectF &clip, const QQuickItem *layer) {
    if (!item.isVisible() || item.opacity() < 0.05)
        return;
    QRectF inner = clip;
    if (item.clip())
        inner &= placeOf(item, item.boundingRect());
    // A popup, or whatever was put above its siblings, covers what lies beneath.
    if (is(item, "QQuickPopupItem") || item.z() > 0)
        layer = &item;
    if (is(item, "QQuickText") && !item.property("text").toString().isEmpty())
        readText(item, clip, layer);
    if (is(item, "QQuickAbstractButton") || item.activeFocusOnTab())
        readControl(item, clip);
    for (const auto *child : item.childItems())
        visit(*child, inner, layer);
}

void ScreenAudit::readText(const QQuickItem &item, const QRectF &clip, const QQuickItem *layer) {
    const QRectF painted = paintedText(item);
    const QRectF place = placeOf(item, painted);
    const QRectF seen = place & clip;
    // What is scrolled out of sight is looked at when it is in sight.
    if (seen.isEmpty() && (scrollerOf(item, false) || scrollerOf(item, true)))
        return;
    const QString name = nameOf(item);
    const bool elides = item.property("elide").toInt() != int(Qt::ElideNone);
    if (item.property("truncated").toBool() && !elides)
        m_faults << u"cut off: "_s + name;
    if (painted.width() > item.width() + slack && item.width() > 0)
        m_faults << u"wider than its place (%1 > %2): %3"_s.arg(painted.width()).arg(item.width()).arg(name);
    if (painted.height() > item.height() + slack && item.height() > 0)
        m_faults << u"higher than its place (%1 > %2): %3"_s.arg(painted.height()).arg(item.height()).arg(name);
    if (seen.width() < place.width() - slack && !scrollerOf(item, true))
        m_faults << u"hidden at the side: "_s + name;
    if (seen.height() < place.height() - slack && !scrollerOf(item, false))
        m_faults << u"hidden above or below: "_s + name;
    m_texts.push_back({.place = seen, .name = name, .layer = layer});
}

void ScreenAudit::readControl(const QQuickItem &item, const QRectF &clip) {
    const QRectF place = placeOf(item, item.boundingRect());
    if ((place & clip).isEmpty())
        return;
    // A field is hit anywhere in its frame, and what is dragged anywhere along its length.
    const bool pressed = is(item, "QQuickAbstractButton") || is(item, "QQuickComboBox");
    if (pressed && std::min(item.width(), item.height()) < leastTarget * std::min(m_scale, 1.0) - slack)
        m_faults << u"too small to hit (%1 x %2): %3"_s.arg(item.width()).arg(item.height()).arg(nameOf(item));
    // The toolkit keeps the name of a secret field to itself, so that one says it in its description.
    const auto *seen = QAccessible::queryAccessibleInterface(const_cast<QQuickItem *>(&item));
    const bool secret = seen && seen->state().passwordEdit;
    if (!seen || seen->text(secret ? QAccessible::Description : QAccessible::Name).isEmpty())
        m_faults << u"has no name for a screen reader: "_s + nameOf(item);
}

void ScreenAudit::findOverlaps() {
    for (std::size_t one = 0; one < m_texts.size(); ++one) {
        for (std::size_t other = one + 1; other < m_texts.size(); ++other) {
            if (m_texts[one].layer != m_texts[other].layer)
                continue;
            const QRectF shared = m_texts[one].place & m_texts[other].place;
            // Lines of text have air above and below; letters touch only well within it.
            if (shared.width() > 2 && shared.height() > 6)
                m_faults << u"lies on other text: "_s + m_texts[one].name + u" and "_s + m_texts[other].name;
        }
    }
}

} // namespace lmp
