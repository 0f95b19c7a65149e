#pragma once

#include "core/CapabilityStore.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// The features that the service has told of, as their notices say it: all of them, or those of one place.
///
/// Made by the screen that lists them; UI thread. A feature without an entry has no row.
class CapabilityList : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(lmp::CapabilityStore *store READ store WRITE setStore NOTIFY sourceChanged)
    /// The place in the navigation; empty for every feature.
    Q_PROPERTY(QString nav READ nav WRITE setNav NOTIFY sourceChanged)
    /// Features that belong to the place although the service does not say so.
    Q_PROPERTY(QList<QString> also READ also WRITE setAlso NOTIFY sourceChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Role {
        TextRole = Qt::UserRole + 1, ///< text: QString, as CapabilityNote words it
    };

    explicit CapabilityList(QObject *parent = nullptr);

    CapabilityStore *store() const { return m_store; }
    void setStore(CapabilityStore *store);
    const QString &nav() const { return m_nav; }
    void setNav(const QString &nav);
    const QStringList &also() const { return m_also; }
    void setAlso(const QStringList &ids);
    int count() const { return int(m_texts.size()); }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void sourceChanged();
    void countChanged();

private:
    void look();
    bool belongs(const FeatureCapability &feature) const;

    QPointer<CapabilityStore> m_store;
    QString m_nav;
    QStringList m_also;
    QStringList m_texts;
};

} // namespace lmp
