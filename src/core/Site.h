#pragma once

#include <QString>
#include <QUrl>

namespace lmp {

/// The deployment's addresses, made once at start from the site root.
///
/// A value; any thread.
struct Site {
    QUrl root;      ///< e.g. https://host, without a path of its own
    QUrl api;       ///< root + "/api"
    QUrl ai;        ///< root + "/ai"
    QUrl downloads; ///< where builds and their manifest lie: root + "/downloads", unless the deployment says otherwise

    /// @param root absolute http or https address; trailing slashes are dropped. Invalid input leaves invalid URLs,
    /// which every request then reports as unusable.
    /// @param downloads likewise, where builds lie on another host; empty is below the root
    static Site at(const QString &root, const QString &downloads = {});
};

} // namespace lmp
