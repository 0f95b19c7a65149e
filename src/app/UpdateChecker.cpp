#include "app/UpdateChecker.h"

#include "core/Detach.h"
#include "core/Json.h"
#include "core/PlainLabel.h"
#include "core/RequestURL.h"

#include <QPointer>

namespace lmp {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr qsizetype longestVersion = 64;
constexpr qsizetype longestNotes = 2000;
constexpr int mostNotesLines = 40;
constexpr qsizetype longestHost = 253; // a name that can be looked up has no more

QString unknown() {
    return u"暂时查不到更新"_s;
}

/// A page that may be offered: https, nothing in it that makes one host look like another, and a host short enough to
/// be read to its end, which is what counts.
QUrl page(const QString &address) {
    const QUrl url(address, QUrl::StrictMode);
    const bool safe = url.isValid() && url.scheme() == "https"_L1 && !url.host().isEmpty() &&
                      url.userInfo().isEmpty() && url.host(QUrl::FullyEncoded).size() <= longestHost;
    return safe ? url : QUrl();
}

} // namespace

UpdateChecker::Running UpdateChecker::Running::program() {
    return {.version = QStringLiteral(LMP_VERSION), .build = QByteArrayLiteral(LMP_BUILD).toLongLong()};
}

URLSession UpdateChecker::manifestSession() {
    URLSession session = URLSession::normal();
    session.requestTimeout = session.resourceTimeout = 15s;
    return session;
}

UpdateChecker::UpdateChecker(QUrl downloadBase, ExternalOpener &opener, Running running, URLSession session,
                             QObject *parent)
    : QObject(parent)
    , m_downloadBase(std::move(downloadBase))
    , m_opener(opener)
    , m_running(std::move(running))
    , m_session(std::move(session)) {}

UpdateChecker::~UpdateChecker() {
    m_stop.request_stop();
}

void UpdateChecker::check(bool userInitiated) {
    if (m_checkedThisLaunch && !userInitiated)
        return;
    m_checkedThisLaunch = true;
    m_userInitiated = userInitiated;
    if (m_checking)
        return;
    m_checking = true;
    const QPointer self(this);
    Q_EMIT checkingChanged();
    if (self)
        detach(run(), "the update check");
}

QCoro::Task<> UpdateChecker::run() {
    const QPointer self(this);
    HTTPCall::Outcome outcome;
    if (const auto url = RequestURL::join(m_downloadBase, u"/desktop/mac/latest.json"_s)) {
        outcome = co_await HTTPCall::run({.method = "GET",
                                          .url = *url,
                                          .headers = {{"Accept", "application/json"}, {"Cache-Control", "no-cache"}},
                                          .body = {},
                                          .redirects = HTTPExchange::Redirects::Secure},
                                         m_session, longestManifest, m_stop.get_token());
        if (!self)
            co_return;
    } else
        outcome.failure = url.error();
    auto alert = judge(outcome);
    m_checking = false;
    Q_EMIT checkingChanged();
    if (self && alert)
        setAlert(std::move(alert));
    if (self)
        Q_EMIT checked();
}

std::optional<UpdateChecker::Alert> UpdateChecker::judge(const HTTPCall::Outcome &outcome) const {
    if (outcome.status == 404)
        return reported(u"更新通道尚未开通"_s, u"发布物上传后这里会自动生效；现在用的是 "_s + m_running.version);
    if (outcome.status && outcome.status != 200)
        return reported(unknown(), u"服务器回了 "_s + QString::number(*outcome.status) + u"，稍后再试。"_s);
    if (outcome.end == HTTPExchange::End::TooLarge)
        return reported(unknown(), u"服务器给的更新清单太长，没有读完。"_s);
    if (outcome.failure)
        return reported(unknown(), outcome.failure->reason);
    const auto manifest = Json::decode<Manifest>(outcome.body);
    if (!manifest)
        return reported(unknown(), PlainLabel::lines(manifest.error().describe(Json::typeName<Manifest>())));
    if (m_running.build >= manifest->build)
        return reported(u"已是最新"_s, u"现在用的是 "_s + m_running.version);
    return offer(*manifest);
}

std::optional<UpdateChecker::Alert> UpdateChecker::offer(const Manifest &manifest) const {
    const QString title = u"有新版本 "_s + PlainLabel::line(manifest.version, longestVersion);
    const QUrl download = page(manifest.url);
    if (download.isEmpty())
        return reported(title, u"更新清单里的下载地址不是 https，所以这里不打开它。"_s);
    const QString notes = PlainLabel::lines(manifest.notes.value_or(QString()), longestNotes, mostNotesLines).trimmed();
    return Alert{.title = title,
                 .text = u"下载页面在 "_s + download.authority(QUrl::FullyEncoded) + u'\n' +
                         (notes.isEmpty() ? u"现在用的是 "_s + m_running.version : notes),
                 .buttons = {u"打开下载页面"_s, u"以后再说"_s},
                 .download = download,
                 .asked = m_userInitiated};
}

std::optional<UpdateChecker::Alert> UpdateChecker::reported(const QString &title, const QString &text) const {
    if (!m_userInitiated)
        return std::nullopt;
    return Alert{.title = title, .text = text, .buttons = {u"好"_s}};
}

void UpdateChecker::choose(int button) {
    if (!m_alert)
        return;
    const QUrl download = button == 0 ? m_alert->download : QUrl();
    const QPointer self(this);
    setAlert(std::nullopt);
    if (self && !download.isEmpty() && !m_opener.open(download))
        setAlert(Alert{.title = u"没有打开下载页面"_s,
                       .text = u"没有程序接手这个地址，可以自己打开："_s + download.toString(QUrl::FullyEncoded),
                       .buttons = {u"好"_s}});
}

void UpdateChecker::dismiss() {
    setAlert(std::nullopt);
}

void UpdateChecker::setAlert(std::optional<Alert> alert) {
    m_alert = std::move(alert);
    Q_EMIT alertChanged();
}

} // namespace lmp
