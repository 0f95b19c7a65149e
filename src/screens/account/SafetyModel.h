#pragma once

#include "identity/SafetyGateStore.h"
#include "screens/account/CrisisNumber.h"
#include "screens/account/Dialler.h"
#include "screens/kit/RecordListModel.h"

#include <QtQml/qqmlregistration.h>

namespace lmp {

class ExternalOpener;

/// The safety cards as they are shown: the crisis card and the continuous-use reminder.
///
/// Owned by the window's application, UI thread; store and opener outlive it. A card stays until the person closes it.
class SafetyModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with the window")
    Q_PROPERTY(bool anyOpen READ anyOpen NOTIFY changed)
    Q_PROPERTY(bool crisisOpen READ crisisOpen NOTIFY changed)
    Q_PROPERTY(QString crisisTitle READ crisisTitle CONSTANT)
    Q_PROPERTY(QString crisisText READ crisisText NOTIFY changed)
    Q_PROPERTY(QString crisisRegionText READ crisisRegionText NOTIFY changed)
    Q_PROPERTY(QString crisisWithoutNumbers READ crisisWithoutNumbers NOTIFY changed)
    Q_PROPERTY(QAbstractItemModel *crisisNumbers READ crisisNumbers CONSTANT)
    Q_PROPERTY(QString crisisMessage READ crisisMessage NOTIFY changed)
    Q_PROPERTY(bool continuousUseOpen READ continuousUseOpen NOTIFY changed)
    Q_PROPERTY(QString continuousUseTitle READ continuousUseTitle CONSTANT)
    Q_PROPERTY(QString continuousUseText READ continuousUseText NOTIFY changed)
public:
    SafetyModel(SafetyGateStore &store, ExternalOpener &opener, QObject *parent = nullptr);

    bool anyOpen() const { return crisisOpen() || continuousUseOpen(); }
    bool crisisOpen() const { return m_store.crisis().has_value(); }
    static QString crisisTitle();
    /// The service's guidance.
    QString crisisText() const;
    /// Whose numbers these are, when the region was guessed; else empty.
    QString crisisRegionText() const;
    /// What stands in the numbers' place when there are none fit to be given; else empty.
    QString crisisWithoutNumbers() const;
    QAbstractItemModel *crisisNumbers() { return &m_numbers; }
    /// What became of the last call; empty when the telephone took it.
    const QString &crisisMessage() const { return m_dialler.message(); }
    bool continuousUseOpen() const { return m_store.continuousUse().has_value(); }
    static QString continuousUseTitle();
    QString continuousUseText() const;

    /// @param number as it came
    Q_INVOKABLE void dial(const QString &number);
    Q_INVOKABLE void closeCrisis();
    Q_INVOKABLE void closeContinuousUse();

Q_SIGNALS:
    void changed();
    /// The service has said it again, or for the first time: the card asks for attention.
    void crisisShown();

private:
    void onCrisis();

    SafetyGateStore &m_store;
    Dialler m_dialler;
    RecordListModel<CrisisNumber> m_numbers;
};

} // namespace lmp
