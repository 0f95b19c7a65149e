#pragma once

#include "app/ObjectReference.h"

#include <QObject>
#include <QStringList>

#include <variant>

namespace lmp {

/// Where a window is, and where somebody asked it to go.
///
/// One a window, owned by its scene; UI thread. A request waits until the screen that shows it consumes it, so that it
/// survives a start and a sign-in; a newer one takes its place. Nothing here fails: what cannot be shown is a
/// destination of its own, `Unavailable`.
class AppRouter : public QObject {
    Q_OBJECT
    Q_PROPERTY(lmp::AppRouter::Tab selectedTab READ selectedTab WRITE setSelectedTab NOTIFY selectedTabChanged)
    Q_PROPERTY(QString pendingRequestID READ pendingRequestID NOTIFY pendingChanged)
    Q_PROPERTY(bool isPending READ isPending NOTIFY pendingChanged)
public:
    enum class Tab { now, social, market, studio, me };
    Q_ENUM(Tab)

    struct Receipt {
        QString id;
        bool operator==(const Receipt &) const = default;
    };
    struct Memory {
        QString id;
        bool operator==(const Memory &) const = default;
    };
    struct Mission {
        QString id;
        bool operator==(const Mission &) const = default;
    };
    struct Artifact {
        QString id;
        bool operator==(const Artifact &) const = default;
    };
    struct Object {
        ObjectReference reference;
        bool operator==(const Object &) const = default;
    };
    struct Approval {
        QString missionId;
        QString stepId;
        bool operator==(const Approval &) const = default;
    };
    struct Conversation {
        QString id;
        bool operator==(const Conversation &) const = default;
    };
    /// The page of crisis numbers, which needs no account and belongs to no tab.
    struct Crisis {
        bool operator==(const Crisis &) const = default;
    };
    struct Unavailable {
        bool operator==(const Unavailable &) const = default;
    };
    using Destination =
        std::variant<Unavailable, Receipt, Memory, Mission, Artifact, Object, Approval, Conversation, Crisis>;

    /// A way to go: a tab alone, or a destination in a tab, or one that any tab can show.
    struct Route {
        std::optional<Destination> destination = {};
        std::optional<Tab> tab = {};
        bool operator==(const Route &) const = default;
        static Route unavailable() { return {.destination = Unavailable()}; }
    };

    explicit AppRouter(QObject *parent = nullptr);

    Tab selectedTab() const { return m_selectedTab; }
    /// The person's own choice of a tab; a request that waits keeps waiting.
    void setSelectedTab(Tab tab);

    const std::optional<Destination> &pending() const { return m_pending; }
    bool isPending() const { return m_pending.has_value(); }
    /// The tab that the pending destination must be shown in; none when any can.
    const std::optional<Tab> &pendingHostTab() const { return m_pendingHostTab; }
    /// Another one for every request, also for the same place again. Empty before the first.
    const QString &pendingRequestID() const { return m_pendingRequestID; }

    /// Asks for `destination`, and selects the tab that shows it.
    void navigate(Destination destination, std::optional<Tab> hostTab = {});
    void follow(const Route &route);
    /// Hands the pending destination to the screen that shows it; none when another screen was first.
    std::optional<Destination> consume();

    /// The kinds of objects that this client has a screen for; a reference to any other is unavailable.
    void setShownKinds(const QStringList &kinds) { m_shownKinds = kinds; }
    const QStringList &shownKinds() const { return m_shownKinds; }
    /// The way to an object, for a client that shows `shownKinds`.
    static Route routeTo(const ObjectReference &reference, const QStringList &shownKinds);

Q_SIGNALS:
    void selectedTabChanged();
    /// A new request, or the last one was consumed.
    void pendingChanged();

private:
    Tab m_selectedTab = Tab::now;
    std::optional<Destination> m_pending;
    std::optional<Tab> m_pendingHostTab;
    QString m_pendingRequestID;
    QStringList m_shownKinds;
};

} // namespace lmp
