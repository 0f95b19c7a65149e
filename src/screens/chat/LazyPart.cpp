#include "screens/chat/LazyPart.h"

#include <QQmlContext>
#include <QQmlInfo>

namespace lmp {

using namespace Qt::StringLiterals;

LazyPart::LazyPart(QQuickItem *parent)
    : QQuickItem(parent)
    , QQmlIncubator(Asynchronous) {}

LazyPart::~LazyPart() {
    clear();
}

void LazyPart::setWanted(bool wanted) {
    if (std::exchange(m_wanted, wanted) == wanted)
        return;
    Q_EMIT wantedChanged();
    update();
}

void LazyPart::setUrgent(bool urgent) {
    if (std::exchange(m_urgent, urgent) == urgent)
        return;
    Q_EMIT urgentChanged();
    if (urgent && isLoading())
        forceCompletion();
}

void LazyPart::componentComplete() {
    QQuickItem::componentComplete();
    update();
}

void LazyPart::itemChange(ItemChange change, const ItemChangeData &data) {
    QQuickItem::itemChange(change, data);
    if (change != ItemSceneChange)
        return;
    // Outside of a window the place is on its way out, and what its part refers to may be gone already.
    if (!data.window)
        clear();
    else
        update();
}

void LazyPart::update() {
    if (!isComponentComplete())
        return;
    if (!m_wanted) {
        clear();
        if (m_item) {
            // Whoever is inside one of its signals still stands on it.
            m_item->setVisible(false);
            m_item->setParentItem(nullptr);
            m_item->deleteLater();
            m_item = nullptr;
            fit();
            Q_EMIT itemChanged();
        }
        return;
    }
    if (m_item || isLoading() || !m_part)
        return;
    setInitialProperties({{u"row"_s, QVariant::fromValue(m_subject.data())}});
    m_part->create(*this, m_part->creationContext());
    if (m_urgent && isLoading())
        forceCompletion();
}

void LazyPart::setInitialState(QObject *object) {
    object->setParent(this);
    if (auto *item = qobject_cast<QQuickItem *>(object)) {
        item->setParentItem(this);
        if (widthValid())
            item->setWidth(width());
    }
}

void LazyPart::statusChanged(Status status) {
    if (status == Error)
        qmlWarning(this, errors());
    if (status != Ready)
        return;
    m_item = qobject_cast<QQuickItem *>(object());
    connect(m_item, &QQuickItem::implicitWidthChanged, this, &LazyPart::fit);
    connect(m_item, &QQuickItem::implicitHeightChanged, this, &LazyPart::fit);
    fit();
    Q_EMIT itemChanged();
}

void LazyPart::fit() {
    setImplicitSize(m_item ? m_item->implicitWidth() : 0, m_item ? m_item->implicitHeight() : 0);
}

void LazyPart::geometryChange(const QRectF &now, const QRectF &before) {
    QQuickItem::geometryChange(now, before);
    if (m_item && widthValid())
        m_item->setWidth(now.width());
}

} // namespace lmp
