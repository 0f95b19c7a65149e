#include "core/PendingRemovals.h"

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

/// A name a line.
const QString removalsKey = u"lmp.session.removals.v1"_s;

} // namespace

QStringList PendingRemovals::accounts() const {
    const auto kept = m_settings ? m_settings->value(removalsKey) : std::nullopt;
    return QString::fromUtf8(kept.value_or(QByteArray())).split(u'\n', Qt::SkipEmptyParts);
}

void PendingRemovals::add(const QString &account) {
    QStringList all = accounts();
    if (!m_settings || all.contains(account))
        return;
    all.push_back(account);
    m_settings->setValue(removalsKey, all.join(u'\n').toUtf8());
}

void PendingRemovals::drop(const QString &account) {
    QStringList all = accounts();
    const bool known = all.removeAll(account) > 0;
    // Another process may have noted it since these were read.
    if (m_settings && all.isEmpty())
        m_settings->remove(removalsKey);
    else if (known)
        m_settings->setValue(removalsKey, all.join(u'\n').toUtf8());
}

} // namespace lmp
