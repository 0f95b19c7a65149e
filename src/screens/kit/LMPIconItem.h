#pragma once

#include <QColor>
#include <QQuickItem>

namespace lmp {

/// One of the kit's line icons, drawn in one colour and sharp at every scale and pixel ratio.
///
/// Owned by the QML tree; UI thread, but for updatePaintNode. An icon is read and rasterised when it is first shown in
/// a size, and kept as a mask for the whole program, so that an icon nobody sees costs nothing and a new colour costs
/// one fill. An unknown name draws nothing and is logged once; an empty name draws nothing.
class LMPIconItem : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    explicit LMPIconItem(QQuickItem *parent = nullptr);

    [[nodiscard]] QString name() const { return m_name; }
    void setName(const QString &name);
    [[nodiscard]] QColor color() const { return m_color; }
    void setColor(const QColor &color);

    /// The icon `name` in `color`, `pixels` wide and high; null for a name there is no icon of. Any thread.
    [[nodiscard]] static QImage image(const QString &name, const QColor &color, int pixels);

Q_SIGNALS:
    void nameChanged();
    void colorChanged();

protected:
    QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;

private:
    void redraw();

    QString m_name;
    QColor m_color = Qt::black;
    bool m_stale = true;
};

} // namespace lmp
