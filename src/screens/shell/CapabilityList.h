#pragma once

#include "core/CapabilityStore.h"

#include <QPointer>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// The features that the service has told of, in a steady order.
///
/// Made by the screen that lists them; UI thread.
class CapabilityList : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(lmp::CapabilityStore *store READ store WRITE setStore NOTIFY changed)
    Q_PROPERTY(QStringList ids READ ids NOTIFY changed)
public:
    explicit CapabilityList(QObject *parent = nullptr);

    CapabilityStore *store() const { return m_store; }
    void setStore(CapabilityStore *store);
    QStringList ids() const;

Q_SIGNALS:
    void changed();

private:
    QPointer<CapabilityStore> m_store;
};

} // namespace lmp
