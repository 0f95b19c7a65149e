#pragma once

#include <QSet>
#include <QString>

#include <memory>

namespace lmp {

/// A copy beside a text's file that some window of this program writes; a copy that nobody holds was left behind.
///
/// Held by the text it is a copy of. UI thread.
class KeptTextClaim {
public:
    /// The copy, or null when another window holds it.
    static std::shared_ptr<const void> take(const QString &id) {
        return held().contains(id) ? nullptr : std::shared_ptr<const KeptTextClaim>(new KeptTextClaim(id));
    }
    ~KeptTextClaim() { held().remove(m_id); }
    KeptTextClaim(const KeptTextClaim &) = delete;
    KeptTextClaim &operator=(const KeptTextClaim &) = delete;

private:
    explicit KeptTextClaim(const QString &id)
        : m_id(id) {
        held().insert(m_id);
    }
    static QSet<QString> &held() {
        static QSet<QString> ids;
        return ids;
    }

    QString m_id;
};

} // namespace lmp
