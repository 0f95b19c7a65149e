#include "core/RequestURL.h"

#include <QHostAddress>

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// What may stand in a URL as it is (RFC 3986). Non-ASCII is percent-encoded by QUrl; controls, blanks and the
/// characters that no URL holds are refused, so that nothing can be smuggled into the request line.
bool mayStand(QChar c) {
    const char16_t u = c.unicode();
    return u > 0x20 && u != 0x7f && !u"\"<>\\^`{|}"_s.contains(c) && (u < 0x80 || u > 0x9f);
}

/// Every '%' must open an escape of two hexadecimal digits.
bool escapesHold(const QString &text) {
    for (qsizetype at = text.indexOf(u'%'); at >= 0; at = text.indexOf(u'%', at + 1)) {
        bool hexadecimal = false;
        text.mid(at + 1, 2).toUInt(&hexadecimal, 16);
        if (!hexadecimal || at + 2 >= text.size())
            return false;
    }
    return true;
}

int portOf(const QUrl &url) {
    return url.port(url.scheme() == "https"_L1 ? 443 : 80);
}

} // namespace

Result<QUrl> RequestURL::join(const QUrl &base, const QString &path) {
    QString text = base.toString(QUrl::FullyEncoded);
    while (text.endsWith(u'/'))
        text.chop(1);
    if (!path.startsWith(u'/'))
        text += u'/';
    text += path;
    // Behind a query or a fragment the path would be swallowed, and every request would ask for the same thing.
    const bool forms =
        !base.hasQuery() && !base.hasFragment() && std::ranges::all_of(path, mayStand) && escapesHold(path);
    const QUrl url = forms ? QUrl(text, QUrl::StrictMode) : QUrl();
    const bool usable =
        url.isValid() && (url.scheme() == "http"_L1 || url.scheme() == "https"_L1) && !url.host().isEmpty();
    if (!usable)
        return std::unexpected(APIError::unusableURL());
    return url;
}

bool RequestURL::sameOrigin(const QUrl &a, const QUrl &b) {
    return a.scheme() == b.scheme() && a.host() == b.host() && portOf(a) == portOf(b);
}

bool RequestURL::isLoopback(const QUrl &url) {
    return url.host() == "localhost"_L1 || QHostAddress(url.host()).isLoopback();
}

} // namespace lmp
