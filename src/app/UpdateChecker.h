#pragma once

#include "core/HTTPCall.h"
#include "core/JsonFailure.h"
#include "platform/ExternalOpener.h"

#include <QObject>
#include <QStringList>
#include <QUrl>

#include <boost/describe.hpp>

#include <optional>
#include <stop_token>

namespace lmp {

/// Asks once a launch, and whenever the person asks, whether there is a newer build, and offers its page.
///
/// One for the process, so that several windows ask once; UI thread. Nothing is downloaded or installed here. What an
/// automatic check cannot find out it keeps to itself; a check the person asked for ends with an alert, whatever the
/// outcome. Nothing of the manifest is trusted: it is short, comes without a detour over http, and its address is
/// offered only when it is https, with its host to be read.
class UpdateChecker : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool checking READ isChecking NOTIFY checkingChanged)
    Q_PROPERTY(bool alertOpen READ isAlertOpen NOTIFY alertChanged)
    Q_PROPERTY(QString alertTitle READ alertTitle NOTIFY alertChanged)
    Q_PROPERTY(QString alertText READ alertText NOTIFY alertChanged)
    Q_PROPERTY(QList<QString> alertButtons READ alertButtons NOTIFY alertChanged)
    /// The person waits for this alert. Otherwise it comes while they are at something else.
    Q_PROPERTY(bool alertAsked READ isAlertAsked NOTIFY alertChanged)
public:
    struct Manifest {
        QString version;
        qint64 build = 0;
        QString url;
        std::optional<QString> notes = {};
    };
    /// What is running now.
    struct Running {
        QString version;
        qint64 build = 0;
        static Running program();
    };
    struct Alert {
        QString title;
        QString text; ///< plain text; parts of it come from outside
        QStringList buttons;
        QUrl download = {}; ///< what the first button opens; empty when it only closes
        bool asked = true;  ///< the person waits for it
        bool operator==(const Alert &) const = default;
    };

    static constexpr qint64 longestManifest = 64 * 1024;

    /// @param downloadBase the deployment's download base
    /// @param opener outlives this
    UpdateChecker(QUrl downloadBase, ExternalOpener &opener, Running running = Running::program(),
                  URLSession session = manifestSession(), QObject *parent = nullptr);
    ~UpdateChecker() override;

    /// Checks. An automatic check is the first of this launch or nothing; one that the person asks for joins the one
    /// under way.
    Q_INVOKABLE void check(bool userInitiated);
    bool checkedThisLaunch() const { return m_checkedThisLaunch; }
    bool isChecking() const { return m_checking; }

    /// The alert to show, if there is one.
    const std::optional<Alert> &alert() const { return m_alert; }
    bool isAlertOpen() const { return m_alert.has_value(); }
    QString alertTitle() const { return m_alert ? m_alert->title : QString(); }
    QString alertText() const { return m_alert ? m_alert->text : QString(); }
    bool isAlertAsked() const { return m_alert && m_alert->asked; }
    QStringList alertButtons() const { return m_alert ? m_alert->buttons : QStringList(); }
    /// The person's answer; the alert closes.
    Q_INVOKABLE void choose(int button);
    Q_INVOKABLE void dismiss();

    /// 15 s at most, in silence and in all.
    static URLSession manifestSession();

Q_SIGNALS:
    void checkingChanged();
    void alertChanged();
    /// A check has ended, with an alert or without.
    void checked();

private:
    QCoro::Task<> run();
    /// What an answer means: an alert, or none for what an automatic check does not speak of.
    std::optional<Alert> judge(const HTTPCall::Outcome &outcome) const;
    std::optional<Alert> offer(const Manifest &manifest) const;
    std::optional<Alert> reported(const QString &title, const QString &text) const;
    void setAlert(std::optional<Alert> alert);

    QUrl m_downloadBase;
    ExternalOpener &m_opener;
    Running m_running;
    URLSession m_session;
    bool m_checkedThisLaunch = false;
    bool m_checking = false;
    bool m_userInitiated = false; ///< of the check under way
    std::optional<Alert> m_alert;
    std::stop_source m_stop;
};
BOOST_DESCRIBE_STRUCT(UpdateChecker::Manifest, (), (version, build, url, notes))

} // namespace lmp
