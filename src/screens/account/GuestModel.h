#pragma once

#include "core/GuestTrial.h"
#include "screens/account/GuestTurn.h"
#include "screens/kit/RecordListModel.h"

#include <QtQml/qqmlregistration.h>

#include <memory>

namespace lmp {

/// The guest trial as a small chat.
///
/// Owned by SessionModel, UI thread. A text whose round failed comes back into `input`, to be tried again. The trial
/// and its token live from `start` to `leave`.
class GuestModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by SessionModel")
    Q_PROPERTY(QAbstractItemModel *turns READ turns CONSTANT)
    Q_PROPERTY(bool open READ isOpen NOTIFY changed)
    Q_PROPERTY(bool opening READ isOpening NOTIFY changed)
    Q_PROPERTY(bool sending READ isSending NOTIFY changed)
    Q_PROPERTY(bool canSend READ canSend NOTIFY changed)
    Q_PROPERTY(bool exhausted READ isExhausted NOTIFY changed)
    Q_PROPERTY(QString exhaustedText READ exhaustedText CONSTANT)
    Q_PROPERTY(QString roundsText READ roundsText NOTIFY changed)
    Q_PROPERTY(QString note READ note NOTIFY changed)
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(QString pending READ pending NOTIFY changed)
    Q_PROPERTY(QString input READ input WRITE setInput NOTIFY inputChanged)
public:
    explicit GuestModel(AuthService service, QObject *parent = nullptr);

    QAbstractItemModel *turns() { return &m_turns; }
    bool isOpen() const { return m_trial && m_trial->isOpen(); }
    bool isOpening() const { return m_trial && m_trial->isBusy() && !m_trial->isOpen(); }
    bool isSending() const { return isOpen() && m_trial->isBusy(); }
    bool canSend() const { return isOpen() && !isSending() && !isExhausted() && !m_input.trimmed().isEmpty(); }
    bool isExhausted() const { return m_trial && m_trial->isExhausted(); }
    static QString exhaustedText();
    /// How many rounds are left; empty before the trial is open.
    QString roundsText() const;
    /// What the service says about the trial; may be empty.
    QString note() const { return m_trial ? m_trial->note() : QString(); }
    /// The last failure.
    QString message() const { return m_trial ? m_trial->message() : QString(); }
    /// The text whose answer is under way.
    const QString &pending() const { return m_pending; }
    const QString &input() const { return m_input; }
    void setInput(const QString &input);

    /// Opens a trial; again after one that did not open.
    Q_INVOKABLE void start();
    /// Sends the input. @return false when there is nothing to send or nobody to send it to
    Q_INVOKABLE bool send();
    /// Ends the trial and forgets what was said.
    Q_INVOKABLE void leave();

Q_SIGNALS:
    void changed();
    void inputChanged();

private:
    QCoro::Task<> sendNow();
    void showTurns();

    AuthService m_service;
    std::unique_ptr<GuestTrial> m_trial;
    RecordListModel<GuestTurn> m_turns;
    QString m_pending;
    QString m_input;
};

} // namespace lmp
