#include "app/AppRouter.h"

#include <QPointer>
#include <QUuid>

#include <algorithm>
#include <array>

namespace lmp {

namespace {

using Tab = AppRouter::Tab;

/// Where objects of a kind are shown, and as what.
struct Kind {
    QStringView name;
    Tab tab;
    AppRouter::Destination (*destination)(const ObjectReference &);
};

template <class T>
AppRouter::Destination byId(const ObjectReference &reference) {
    return T{reference.id};
}

AppRouter::Destination approval(const ObjectReference &reference) {
    return AppRouter::Approval{reference.id, reference.step};
}

AppRouter::Destination object(const ObjectReference &reference) {
    return AppRouter::Object{reference};
}

constexpr std::array kinds{
    Kind{u"mission", Tab::now, byId<AppRouter::Mission>},
    Kind{u"approval", Tab::now, approval},
    Kind{u"proposal", Tab::now, object},
    Kind{u"user", Tab::social, object},
    Kind{u"listing", Tab::market, object},
    Kind{u"artifact", Tab::studio, byId<AppRouter::Artifact>},
    Kind{u"creation", Tab::studio, object},
    Kind{u"receipt", Tab::me, byId<AppRouter::Receipt>},
    Kind{u"memory", Tab::me, byId<AppRouter::Memory>},
    Kind{u"grant", Tab::me, object},
};

} // namespace

AppRouter::AppRouter(QObject *parent)
    : QObject(parent) {}

void AppRouter::setSelectedTab(Tab tab) {
    if (std::exchange(m_selectedTab, tab) != tab)
        Q_EMIT selectedTabChanged();
}

void AppRouter::navigate(Destination destination, std::optional<Tab> hostTab) {
    m_pending = std::move(destination);
    m_pendingHostTab = hostTab;
    m_pendingRequestID = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const QPointer self(this);
    if (hostTab)
        setSelectedTab(*hostTab);
    if (self)
        Q_EMIT pendingChanged();
}

void AppRouter::follow(const Route &route) {
    if (route.destination)
        navigate(*route.destination, route.tab);
    else if (route.tab)
        setSelectedTab(*route.tab);
}

std::optional<AppRouter::Destination> AppRouter::consume() {
    auto destination = std::exchange(m_pending, std::nullopt);
    m_pendingHostTab.reset();
    if (destination)
        Q_EMIT pendingChanged();
    return destination;
}

AppRouter::Route AppRouter::routeTo(const ObjectReference &reference, const QStringList &shownKinds) {
    const auto *const kind = std::ranges::find(kinds, reference.kind, &Kind::name);
    if (kind == kinds.end() || !shownKinds.contains(reference.kind))
        return Route::unavailable();
    return {.destination = kind->destination(reference), .tab = kind->tab};
}

} // namespace lmp
