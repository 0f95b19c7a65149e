#pragma once

#include <QLocalServer>
#include <QObject>
#include <QStringList>

#include <boost/describe.hpp>

#include <chrono>
#include <optional>

namespace lmp {

/// Sees to it that one user runs one program for each profile: a second start hands its arguments to the first and
/// ends.
///
/// Owned by main, UI thread. Who is first is decided by a lock that the system takes back when its holder dies, so two
/// starts at the same instant leave exactly one, and what a killed one left behind is in nobody's way. The socket
/// beside it is open to this user alone. Where neither can be made, the program runs all the same, by itself.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    /// What a second start hands over.
    struct Handover {
        QStringList arguments;
        QString activationToken; ///< with which the desktop lets the first one raise its window; may be empty
        /// The service that this start names, empty for the sandbox; none where it names none.
        std::optional<QString> site = {};
    };
    enum class Role {
        First,        ///< go on; later starts are heard of through `handedOver`
        HandedOver,   ///< the first one has taken the arguments: exit
        OtherSite,    ///< so it has, but it stays with another service than this start names: say so and exit
        Unresponsive, ///< there is a first one that does not answer: say so and exit
    };

    static constexpr std::chrono::milliseconds patience{2000};
    static constexpr qsizetype longestMessage = 64 * 1024;

    /// @param profile the profile's name, empty for the person's own
    /// @param folder where the lock and the socket lie; empty is the user's runtime folder
    explicit SingleInstance(const QString &profile, QString folder = {}, QObject *parent = nullptr);
    ~SingleInstance() override;

    /// Finds out which start this is, once, before any window: at once for the first, within `limit` otherwise.
    Role claim(const Handover &handover, std::chrono::milliseconds limit = patience);
    /// Gives the place up, as soon as the program begins to close down: a start from then on is the next first one,
    /// and does not hand over to somebody who is leaving.
    void release();

    /// What to tell the person when the first one does not answer.
    static QString unresponsiveText();
    /// What to tell them when it stays with its own service, on both sides.
    static QString otherSiteText();
    /// The handover of this process: its arguments, and the token that started it.
    static Handover ofThisProcess();

Q_SIGNALS:
    /// Somebody started the program again: follow the arguments and raise the window.
    void handedOver(const lmp::SingleInstance::Handover &handover);

private:
    enum class Lock { Ours, Theirs, Impossible };
    Lock takeLock();
    void listen();
    std::optional<Role> handOver(const QByteArray &message, std::chrono::milliseconds left) const;
    void accept();
    void read(class QLocalSocket *socket);

    QString m_path; ///< without its ending
    QString m_site; ///< the service of the first one
    int m_lock = -1;
    QLocalServer m_server;
};
BOOST_DESCRIBE_STRUCT(SingleInstance::Handover, (), (arguments, activationToken, site))

} // namespace lmp
