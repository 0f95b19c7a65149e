#include "screens/kit/LMPIconItem.h"

#include <QFile>
#include <QHash>
#include <QImage>
#include <QMutex>
#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSvgRenderer>

namespace lmp {

namespace {

using namespace Qt::StringLiterals;

QImage rasterised(const QString &name, int pixels) {
    QSvgRenderer renderer(u":/qt/qml/Lumenpair/Kit/icons/%1.svg"_s.arg(name));
    if (!renderer.isValid()) {
        qWarning("There is no icon %s", qUtf8Printable(name));
        return {};
    }
    QImage mask(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    return mask;
}

/// The mask of an icon in a size, drawn at most once in the program's life. The render thread asks too.
QImage mask(const QString &name, int pixels) {
    static QMutex mutex;
    static QHash<std::pair<QString, int>, QImage> masks;
    const QMutexLocker locker(&mutex);
    const auto key = std::pair(name, pixels);
    auto found = masks.constFind(key);
    if (found == masks.constEnd())
        found = masks.insert(key, rasterised(name, pixels));
    return *found;
}

} // namespace

LMPIconItem::LMPIconItem(QQuickItem *parent)
    : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

void LMPIconItem::setName(const QString &name) {
    if (m_name == name)
        return;
    m_name = name;
    redraw();
    Q_EMIT nameChanged();
}

void LMPIconItem::setColor(const QColor &color) {
    if (m_color == color)
        return;
    m_color = color;
    redraw();
    Q_EMIT colorChanged();
}

QImage LMPIconItem::image(const QString &name, const QColor &color, int pixels) {
    if (name.isEmpty() || pixels <= 0)
        return {};
    QImage icon = mask(name, pixels);
    if (icon.isNull())
        return {};
    QPainter painter(&icon);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(icon.rect(), color);
    return icon;
}

QSGNode *LMPIconItem::updatePaintNode(QSGNode *old, UpdatePaintNodeData *) {
    auto *node = static_cast<QSGImageNode *>(old);
    if (node && !m_stale) {
        node->setRect(boundingRect());
        return node;
    }
    m_stale = false;
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const QImage icon = image(m_name, m_color, qRound(std::min(width(), height()) * ratio));
    if (icon.isNull()) {
        delete node;
        return nullptr;
    }
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Linear);
    }
    node->setTexture(window()->createTextureFromImage(icon, QQuickWindow::TextureCanUseAtlas));
    node->setSourceRect(QRectF(QPointF(), QSizeF(icon.size())));
    node->setRect(boundingRect());
    return node;
}

void LMPIconItem::geometryChange(const QRectF &now, const QRectF &before) {
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size())
        redraw();
}

void LMPIconItem::itemChange(ItemChange change, const ItemChangeData &data) {
    QQuickItem::itemChange(change, data);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange)
        redraw();
}

void LMPIconItem::redraw() {
    m_stale = true;
    update();
}

} // namespace lmp
