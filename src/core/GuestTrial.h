#pragma once

#include "core/AuthService.h"

#include <QObject>

namespace lmp {

/// A few turns of talk without an account.
///
/// Owned by its screen or command, UI thread. The guest token lives here and nowhere else.
class GuestTrial : public QObject {
    Q_OBJECT
public:
    struct Turn {
        QString message;
        QString reply;
        std::optional<QString> stardust;
    };

    explicit GuestTrial(AuthService service);

    /// Asks for a trial; does nothing while one is open or being asked for.
    QCoro::Task<> open();
    /// One turn; does nothing without a trial, without rounds left, while a turn is under way, or without text.
    /// A turn that failed is not in `turns`: the text stays with whoever typed it.
    QCoro::Task<> send(QString message);

    bool isOpen() const { return m_token.has_value(); }
    bool isBusy() const { return m_busy; }
    qint64 roundsLeft() const { return m_roundsLeft; }
    /// No rounds are left: registration is offered.
    bool isExhausted() const { return m_token && m_roundsLeft <= 0; }
    const QList<Turn> &turns() const { return m_turns; }
    /// What the service says about the trial; may be empty.
    const QString &note() const { return m_note; }
    /// The last failure.
    const QString &message() const { return m_message; }

Q_SIGNALS:
    void changed();

private:
    void begin();
    void end(const QString &failure);

    AuthService m_service;
    std::optional<QString> m_token;
    qint64 m_roundsLeft = 0;
    bool m_busy = false;
    QList<Turn> m_turns;
    QString m_note;
    QString m_message;
};

} // namespace lmp
