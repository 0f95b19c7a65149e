#pragma once

#include <QString>
#include <QUrl>

namespace lmp {

/// The deployment's addresses, made once at start from the site root.
///
/// A value; any thread.
struct Site {
    QUrl root; ///< e.g. https://host, without a path of its own
    QUrl api;  ///< root + "/api"
    QUrl ai;   ///< root + "/ai"

    /// @param root absolute http or https address; trailing slashes are dropped. Invalid input leaves invalid URLs,
    /// which every request then reports as unusable.
    static Site at(const QString &root);
};

} // namespace lmp
