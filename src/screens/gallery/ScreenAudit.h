#pragma once

#include <QRectF>
#include <QStringList>

#include <vector>

class QQuickItem;
class QQuickWindow;

namespace lmp {

/// Looks over what a window shows for what a person would stumble on: text that is cut off, leaves its place or lies on
/// other text, and controls that are too small to hit or have no name.
///
/// Free of state; UI thread, after the window has been laid out. Each fault is one line that names the item.
class ScreenAudit {
public:
    /// @param scale of the type, so that a target is measured as it was drawn
    static QStringList faults(const QQuickWindow &window, qreal scale);

private:
    struct Text {
        QRectF place; ///< of the painted text, in the window; what is clipped away left out
        QString name;
        const QQuickItem *layer; ///< what covers others may lie on their text
    };

    explicit ScreenAudit(qreal scale)
        : m_scale(scale) {}

    void visit(const QQuickItem &item, const QRectF &clip, const QQuickItem *layer);
    void readText(const QQuickItem &item, const QRectF &clip, const QQuickItem *layer);
    void readControl(const QQuickItem &item, const QRectF &clip);
    void findOverlaps();

    qreal m_scale;
    std::vector<Text> m_texts;
    QStringList m_faults;
};

} // namespace lmp
