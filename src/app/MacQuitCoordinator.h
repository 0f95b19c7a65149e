#pragma once

#include "platform/Clock.h"

#include <QObject>

#include <functional>

namespace lmp {

/// Lets the program end only when what the person typed is saved, or when saving takes too long; a save that fails
/// keeps it open and asks.
///
/// One for the process, UI thread. The platform's question is always answered later: by `terminationAllowed` or
/// `terminationRefused`, once, through the event loop. What arrives after the answer is ignored. After a refusal it is
/// idle again and may be asked anew.
class MacQuitCoordinator : public QObject {
    Q_OBJECT
    Q_PROPERTY(lmp::MacQuitCoordinator::State state READ state NOTIFY stateChanged)
    Q_PROPERTY(QString warningMessage READ warningMessage CONSTANT)
    Q_PROPERTY(QString warningText READ warningText CONSTANT)
    Q_PROPERTY(QString retryText READ retryText CONSTANT)
    Q_PROPERTY(QString returnText READ returnText CONSTANT)
public:
    enum class State {
        Idle,
        Saving,
        Warning, ///< the save failed: the modal warning is up, with its two buttons
        Resolved ///< termination is allowed; nothing changes any more
    };
    Q_ENUM(State)
    /// Saves all local input; false when something could not be saved. Like LocalInputRegistry::saveAll.
    using Save = std::function<QCoro::Task<bool>()>;

    static constexpr std::chrono::milliseconds limit{4000};

    /// @param clock outlives this
    MacQuitCoordinator(Save save, Clock &clock, QObject *parent = nullptr);
    ~MacQuitCoordinator() override;

    State state() const { return m_state; }
    /// A quit is in progress.
    bool started() const { return m_started; }
    /// Termination is allowed.
    bool resolved() const { return m_resolved; }
    /// It was the deadline that allowed it: what was to be saved may never end.
    bool late() const { return m_late; }

    /// The platform asks whether the program may end. While an answer is pending this only brings the warning, if it
    /// is up, to the front again.
    Q_INVOKABLE void requestTermination();
    /// Saves and no more: nobody asks to end. What fails is asked about when somebody does.
    void saveMeanwhile();
    /// The warning's first button: saves again and ends on success.
    Q_INVOKABLE void retryAndQuit();
    /// The warning's second button: the program stays open.
    Q_INVOKABLE void returnToApplication();

    static QString warningMessage();
    static QString warningText();
    static QString retryText();
    static QString returnText();

Q_SIGNALS:
    void stateChanged();
    /// Close down and exit.
    void terminationAllowed();
    void terminationRefused();
    /// Bring the program's window to the front: the warning waits there.
    void raiseRequested();

private:
    void begin();
    QCoro::Task<> runOperation();
    QCoro::Task<> runMeanwhile();
    QCoro::Task<> runDeadline();
    void onSaved(bool saved);
    void allow();
    void setState(State state);

    Save m_save;
    Clock &m_clock;
    State m_state = State::Idle;
    bool m_started = false;
    bool m_resolved = false;
    bool m_late = false;
    quint64 m_operation = 0;     ///< number of the save that counts
    std::stop_source m_deadline; ///< of that save
};

} // namespace lmp
