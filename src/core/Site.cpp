#include "core/Site.h"

#include "core/RequestURL.h"

namespace lmp {

using namespace Qt::StringLiterals;

Site Site::at(const QString &root, const QString &downloads) {
    const auto joined = [&](const QString &path) {
        return RequestURL::join(QUrl(root, QUrl::StrictMode), path).value_or(QUrl());
    };
    return {QUrl(root, QUrl::StrictMode), joined(u"/api"_s), joined(u"/ai"_s),
            downloads.isEmpty() ? joined(u"/downloads"_s) : QUrl(downloads, QUrl::StrictMode)};
}

} // namespace lmp
