#pragma once

#include <QString>
#include <QUrl>

#include <expected>

#include "core/Result.h"

namespace lmp {

/// The address of one request: a base and a path that may carry its own query.
class RequestURL {
public:
    /// Drops every trailing '/' of the base, puts one in front of the path when it has none, and joins the two.
    /// @return the URL, or the error "地址不合法" when the result is no absolute http(s) address
    static Result<QUrl> join(const QUrl &base, const QString &path);

    /// Whether both name the same scheme, host and port (RFC 6454): only then may the token go along.
    static bool sameOrigin(const QUrl &a, const QUrl &b);

    /// Whether the host is this machine itself.
    static bool isLoopback(const QUrl &url);
};

} // namespace lmp
