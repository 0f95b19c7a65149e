#pragma once

#include "core/HandleSetup.h"

#include <QtQml/qqmlregistration.h>

#include <QStringList>

#include <memory>

namespace lmp {

/// Choosing a handle, as its screen shows it.
///
/// Owned by SessionModel, UI thread. One person's choice: SessionModel starts it afresh for the next.
class HandleModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by SessionModel")
    Q_PROPERTY(QString input READ input WRITE setInput NOTIFY changed)
    Q_PROPERTY(QStringList suggestions READ suggestions NOTIFY changed)
    Q_PROPERTY(QString current READ current NOTIFY changed)
    Q_PROPERTY(bool checking READ isChecking NOTIFY changed)
    Q_PROPERTY(bool saving READ isSaving NOTIFY changed)
    Q_PROPERTY(bool canSave READ canSave NOTIFY changed)
    Q_PROPERTY(bool available READ isAvailable NOTIFY changed)
    Q_PROPERTY(QString checkText READ checkText NOTIFY changed)
    Q_PROPERTY(QString errorText READ errorText NOTIFY changed)
    Q_PROPERTY(QString savedText READ savedText NOTIFY changed)
public:
    HandleModel(AuthService service, Clock &clock, QObject *parent = nullptr);

    QString input() const { return m_setup->input(); }
    void setInput(const QString &input);
    QStringList suggestions() const { return m_setup->suggestions(); }
    /// The handle as the service knows it; empty without one.
    QString current() const;
    bool isChecking() const { return m_setup->isChecking(); }
    bool isSaving() const { return m_setup->isSaving(); }
    /// A check that could not be made does not keep anybody from saving: the service decides then.
    bool canSave() const;
    /// The service said that the input can be had.
    bool isAvailable() const { return m_setup->check() && m_setup->check()->available; }
    /// What the check is about to say or has said in favour of the input.
    QString checkText() const;
    /// Why the input cannot be had, could not be checked or was not saved.
    QString errorText() const;
    /// The handle that was saved, and what the service says to it; empty before.
    QString savedText() const;

    /// A view is shown, which closes it once: the first begins afresh, unless an answer is still to come or a refusal
    /// was not seen yet. Several share one input.
    Q_INVOKABLE void open();
    /// A view is gone, or on its way out. What was sent is as good as saved: its answer is still heard.
    Q_INVOKABLE void close();
    Q_INVOKABLE void save();
    /// Forgets the input and what was said to it.
    void restart();

Q_SIGNALS:
    void changed();
    /// The service took the handle.
    void saved(const QString &handle);
    /// Why the handle was not saved, when no view was there to say so; empty once one is.
    void unseenRefusal(const QString &message);

private:
    QCoro::Task<> saveNow();

    AuthService m_service;
    Clock &m_clock;
    std::unique_ptr<HandleSetup> m_setup;
    int m_views = 0;
    bool m_unseen = false; ///< a refusal
};

} // namespace lmp
