#include "conversation/ExtractionProgress.h"

#include <algorithm>

namespace lmp {

using namespace Qt::StringLiterals;

namespace {

const QString key = u"lmp.memory.extracted.v1"_s;

} // namespace

ExtractionProgress::ExtractionProgress(Settings *settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings) {
    const auto kept = m_settings ? m_settings->value(key) : std::nullopt;
    for (const Entry &entry : Json::decode<QList<Entry>>(kept.value_or("[]")).value_or(QList<Entry>()))
        note(entry.place, qsizetype(entry.upTo));
}

QString ExtractionProgress::place(const QString &account, const QString &conversationId) {
    return account + u'\n' + conversationId;
}

ExtractionProgress::Ticket ExtractionProgress::begin(const QString &place) {
    m_reading.insert(place, ++m_last);
    const Ticket ticket = m_last;
    Q_EMIT changed();
    return ticket;
}

void ExtractionProgress::end(Ticket ticket, std::optional<qsizetype> upTo) {
    const auto places = m_reading.keys(ticket);
    for (const QString &place : places) {
        m_reading.remove(place);
        if (upTo)
            note(place, *upTo);
    }
    if (upTo)
        store();
    Q_EMIT changed();
}

void ExtractionProgress::carryOver(const QString &from, const QString &to) {
    if (const auto reading = m_reading.constFind(from); reading != m_reading.cend())
        m_reading.insert(to, Ticket(*reading));
    if (upTo(from) > 0) {
        note(to, upTo(from));
        store();
    }
    Q_EMIT changed();
}

void ExtractionProgress::note(const QString &place, qsizetype upTo) {
    // An answer that was overtaken by a later one takes nothing back.
    m_upTo[place] = std::max(m_upTo.value(place), upTo);
    m_order.removeOne(place);
    m_order.push_back(place);
    while (m_order.size() > most)
        m_upTo.remove(m_order.takeFirst());
}

void ExtractionProgress::store() {
    if (!m_settings)
        return;
    QList<Entry> entries;
    for (const QString &place : std::as_const(m_order))
        entries.push_back({.place = place, .upTo = m_upTo.value(place)});
    (void)m_settings->setValue(key, Json::encode(entries));
}

} // namespace lmp
