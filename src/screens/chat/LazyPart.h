#pragma once

#include <QPointer>
#include <QQmlComponent>
#include <QQmlIncubator>
#include <QQuickItem>
#include <QtQmlIntegration>

namespace lmp {

/// A place for a part of the screen that exists only while it is wanted, and is as high as that part.
///
/// Made by the screens, UI thread. What is `urgent` is made at once, anything else when there is time; what was begun
/// is finished at once when it becomes urgent. The part gets `subject` as its required property `row`. A part that
/// cannot be made leaves its place empty and says why in the log.
class LazyPart : public QQuickItem, private QQmlIncubator {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQmlComponent *part MEMBER m_part NOTIFY partChanged)
    Q_PROPERTY(QQuickItem *subject MEMBER m_subject NOTIFY subjectChanged)
    Q_PROPERTY(bool wanted READ wanted WRITE setWanted NOTIFY wantedChanged)
    Q_PROPERTY(bool urgent READ urgent WRITE setUrgent NOTIFY urgentChanged)
    /// The part, or null while there is none.
    Q_PROPERTY(QQuickItem *item READ item NOTIFY itemChanged)
public:
    explicit LazyPart(QQuickItem *parent = nullptr);
    ~LazyPart() override;

    bool wanted() const { return m_wanted; }
    void setWanted(bool wanted);
    bool urgent() const { return m_urgent; }
    void setUrgent(bool urgent);
    QQuickItem *item() const { return m_item; }

Q_SIGNALS:
    void partChanged();
    void subjectChanged();
    void wantedChanged();
    void urgentChanged();
    void itemChanged();

protected:
    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &now, const QRectF &before) override;
    void setInitialState(QObject *object) override;
    void statusChanged(Status status) override;

private:
    void update();
    void fit();

    QPointer<QQmlComponent> m_part;
    QPointer<QQuickItem> m_subject;
    QPointer<QQuickItem> m_item;
    bool m_wanted = false;
    bool m_urgent = true;
};

} // namespace lmp
