#pragma once

#include "core/AuthService.h"
#include "platform/Clock.h"

#include <QObject>

namespace lmp {

/// Choosing the handle of a new account.
///
/// Owned by its screen, UI thread. Only the answer about the input as it stands now is shown; older ones are dropped.
class HandleSetup : public QObject {
    Q_OBJECT
public:
    /// @param clock outlives this
    HandleSetup(AuthService service, Clock &clock);
    ~HandleSetup() override;

    /// The input after an edit; it is checked once typing pauses.
    void setInput(const QString &input);
    const QString &input() const { return m_input; }
    QCoro::Task<> loadSuggestions();
    /// Saves the input; does nothing without one or while it is being saved.
    QCoro::Task<> save();

    bool isChecking() const { return m_checking; }
    bool isSaving() const { return m_saving; }
    /// The service's answer about the input; none before it.
    const std::optional<CheckResp> &check() const { return m_check; }
    const QList<QString> &suggestions() const { return m_suggestions; }
    /// The handle as it was saved last, or as the service knew it.
    const std::optional<QString> &current() const { return m_current; }
    const std::optional<SetResp> &saved() const { return m_saved; }
    /// The last failure.
    const QString &message() const { return m_message; }

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<> checkSoon();

    AuthService m_service;
    Clock &m_clock;
    QString m_input;
    quint64 m_edits = 0;
    bool m_checking = false;
    bool m_saving = false;
    std::optional<CheckResp> m_check;
    QList<QString> m_suggestions;
    std::optional<QString> m_current;
    std::optional<SetResp> m_saved;
    QString m_message;
    std::stop_source m_editStop;
};

} // namespace lmp
