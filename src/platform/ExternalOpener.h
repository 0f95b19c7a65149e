#pragma once

#include <QCoroTask>

#include <QUrl>

namespace lmp {

/// Hands a link to another program: the browser, the telephone.
///
/// Owned by the application, UI thread.
class ExternalOpener {
public:
    ExternalOpener() = default;
    ExternalOpener(const ExternalOpener &) = delete;
    ExternalOpener &operator=(const ExternalOpener &) = delete;
    virtual ~ExternalOpener() = default;

    /// @return false when no program took it; the link is then shown to the person instead.
    virtual bool open(const QUrl &url) = 0;
    /// The same, with as much patience as it takes to hear whether a program took it. Outlived by this.
    virtual QCoro::Task<bool> openAndHear(QUrl url) { co_return open(url); }
};

} // namespace lmp
