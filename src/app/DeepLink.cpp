#include "app/DeepLink.h"

#include <QMetaEnum>
#include <QUrl>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

const QString scheme = u"lumenpair"_s;

/// The pieces behind the scheme, each decoded once; none for what is no link.
std::optional<QStringList> pieces(const QString &link) {
    if (link.size() > DeepLink::longest || !DeepLink::isLink(link))
        return std::nullopt;
    const QUrl url(link, QUrl::StrictMode);
    const bool plain = url.isValid() && !url.host().isEmpty() && url.userInfo().isEmpty() && url.port() == -1 &&
                       !url.hasQuery() && !url.hasFragment();
    if (!plain)
        return std::nullopt;
    // Split before it is decoded: an escaped slash belongs to the piece it stands in.
    QStringList found{url.host()};
    QString path = url.path(QUrl::FullyEncoded);
    if (path.endsWith(u'/'))
        path.chop(1);
    for (const QString &piece : path.split(u'/').sliced(1))
        found.push_back(QUrl::fromPercentEncoding(piece.toLatin1()));
    return found;
}

std::optional<AppRouter::Tab> tabNamed(const QString &name) {
    bool known = false;
    const int tab = QMetaEnum::fromType<AppRouter::Tab>().keyToValue(name.toLatin1().constData(), &known);
    return known ? std::optional(AppRouter::Tab(tab)) : std::nullopt;
}

} // namespace

bool DeepLink::isLink(QStringView text) {
    return text.startsWith(scheme + u':', Qt::CaseInsensitive);
}

std::optional<QString> DeepLink::in(const QStringList &arguments) {
    const auto found = std::ranges::find_if(arguments, [](const QString &argument) { return isLink(argument); });
    return found == arguments.end() ? std::nullopt : std::optional(*found);
}

AppRouter::Route DeepLink::route(const QString &link, const QStringList &shownKinds) {
    const auto found = pieces(link);
    if (!found)
        return AppRouter::Route::unavailable();
    const QString &place = found->first();
    if (found->size() == 1) {
        if (place == u"crisis")
            return {.destination = AppRouter::Crisis()};
        if (const auto tab = tabNamed(place))
            return {.tab = tab};
    }
    if (place == u"conversation" && found->size() == 2 && ObjectReference::isId(found->at(1)))
        return {.destination = AppRouter::Conversation{found->at(1)}, .tab = AppRouter::Tab::now};
    if (place == u"object" && (found->size() == 3 || found->size() == 4)) {
        // A step must be there where there is a place for one.
        const bool whole = found->size() == 3 || !found->at(3).isEmpty();
        const auto reference = ObjectReference::of(found->at(1), found->at(2), found->value(3));
        if (whole && reference)
            return AppRouter::routeTo(*reference, shownKinds);
    }
    return AppRouter::Route::unavailable();
}

void DeepLink::open(AppRouter &router, const QString &link) {
    router.follow(route(link, router.shownKinds()));
}

} // namespace lmp
