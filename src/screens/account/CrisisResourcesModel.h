#pragma once

#include "identity/CrisisResourcesService.h"
#include "screens/account/CrisisNumber.h"
#include "screens/account/Dialler.h"
#include "screens/kit/RecordListModel.h"

#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace lmp {

class ExternalOpener;

/// The crisis page: the verified numbers of a region, for anybody, signed in or not.
///
/// Owned by the window's application, UI thread; the opener outlives it. It records nothing and keeps nothing: what was
/// looked at goes when the page closes.
class CrisisResourcesModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with the window")
    Q_PROPERTY(QString entry READ entry CONSTANT)
    Q_PROPERTY(QString entrySubtitle READ entrySubtitle CONSTANT)
    Q_PROPERTY(QString backText READ backText CONSTANT)
    Q_PROPERTY(QStringList rules READ rules CONSTANT)
    Q_PROPERTY(QList<QString> regions READ regions CONSTANT)
    Q_PROPERTY(int regionIndex READ regionIndex NOTIFY changed)
    Q_PROPERTY(bool loading READ loading NOTIFY changed)
    Q_PROPERTY(bool loaded READ loaded NOTIFY changed)
    Q_PROPERTY(QString heading READ heading NOTIFY changed)
    Q_PROPERTY(QString guidance READ guidance NOTIFY changed)
    Q_PROPERTY(QString assumedText READ assumedText NOTIFY changed)
    Q_PROPERTY(QString withoutNumbers READ withoutNumbers NOTIFY changed)
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
    Q_PROPERTY(QString dialMessage READ dialMessage NOTIFY changed)
    Q_PROPERTY(QAbstractItemModel *numbers READ numbers CONSTANT)
public:
    /// @param api where to ask; its token is left behind
    CrisisResourcesModel(APIClient api, ExternalOpener &opener, QObject *parent = nullptr);

    static QString entry();
    static QString entrySubtitle();
    static QString backText();
    static QStringList rules();
    /// The labels of the regions, in the order in which they are offered.
    static QStringList regions();
    int regionIndex() const { return m_region; }
    bool loading() const { return m_loading; }
    bool loaded() const { return m_answer.has_value(); }
    /// The region that the answer is for, and whether it has a list.
    QString heading() const;
    QString guidance() const;
    /// Said when the service guessed the region; else empty.
    QString assumedText() const;
    /// Said when there are no numbers fit to be given; else empty.
    QString withoutNumbers() const;
    QString errorText() const { return m_error; }
    /// What became of the last call; empty when the telephone took it.
    QString dialMessage() const { return m_dialler.message(); }
    QAbstractItemModel *numbers() { return &m_numbers; }

    /// Asks for the chosen region; also again after a failure.
    Q_INVOKABLE void load();
    Q_INVOKABLE void chooseRegion(int index);
    /// @param number as it came
    Q_INVOKABLE void dial(const QString &number);
    /// Forgets what was looked at.
    Q_INVOKABLE void close();

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<> loadNow();
    void drop();

    CrisisResourcesService m_service;
    Dialler m_dialler;
    quint64 m_generation = 0;
    int m_region = 0;
    bool m_loading = false;
    std::optional<CrisisResourcesService::Resp> m_answer;
    QString m_error;
    RecordListModel<CrisisNumber> m_numbers;
};

} // namespace lmp
