#pragma once

#include "core/WebAuthFailure.h"
#include "platform/Clock.h"
#include "platform/ExternalOpener.h"

#include <QObject>

#include <expected>
#include <functional>

namespace lmp {

/// Presents an identity provider's own page in the person's browser and waits for what comes back (RFC 8252).
///
/// Owned by the application, UI thread. Several attempts may run at once; each has a port of its own.
class WebAuthPresenter : public QObject {
    Q_OBJECT
public:
    struct Grant {
        QString code;
        QUrl redirectUri; ///< the one the code is bound to
    };
    using Outcome = std::expected<Grant, WebAuthFailure>;
    using Address = std::function<QUrl(const QUrl &redirectUri)>;

    /// How long the person may take.
    static constexpr std::chrono::minutes patience{5};

    /// @param opener, clock outlive the presenter
    WebAuthPresenter(ExternalOpener &opener, Clock &clock);
    ~WebAuthPresenter() override;

    /// @param state secret that the provider hands back; `address` makes the provider's page for a redirect
    /// @param stop ends the attempt as cancelled
    QCoro::Task<Outcome> present(QString state, Address address, std::stop_token stop);

Q_SIGNALS:
    /// Where the person signs in, while the wait goes on.
    /// @param opened the desktop took the link; it does so without a browser, too, so it is worth showing all the same
    void linkOffered(const QUrl &url, bool opened);

private:
    ExternalOpener &m_opener;
    Clock &m_clock;
    std::stop_source m_stop;
};

} // namespace lmp
