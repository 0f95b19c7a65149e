#pragma once

#include "core/CapabilityStore.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

namespace lmp {

/// What the service says of one feature, where that feature is shown.
///
/// Made by the screen that shows it; UI thread. Empty for a feature without an entry: it is shown without a note then.
class CapabilityNote : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString featureId MEMBER m_featureId WRITE setFeatureId NOTIFY changed)
    Q_PROPERTY(lmp::CapabilityStore *store READ store WRITE setStore NOTIFY changed)
    Q_PROPERTY(bool known READ known NOTIFY changed)
    Q_PROPERTY(Level level READ level NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
public:
    enum class Level { Full, Degraded, None };
    Q_ENUM(Level)

    explicit CapabilityNote(QObject *parent = nullptr);

    void setFeatureId(const QString &id);
    CapabilityStore *store() const { return m_store; }
    void setStore(CapabilityStore *store);
    bool known() const { return m_feature.has_value(); }
    /// Full where nothing else is known.
    Level level() const;
    /// Empty where nothing is known.
    QString text() const { return m_feature ? wording(*m_feature) : QString(); }

    /// The feature's label, how well it works, and its note.
    static QString wording(const FeatureCapability &feature);

Q_SIGNALS:
    void changed();

private:
    void look();

    QString m_featureId;
    QPointer<CapabilityStore> m_store;
    std::optional<FeatureCapability> m_feature;
};

} // namespace lmp
