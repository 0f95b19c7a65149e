#pragma once

#include "core/Json.h"
#include "platform/Settings.h"

#include <QHash>
#include <QObject>
#include <QStringList>

#include <optional>

namespace lmp {

/// How far each conversation has been read for memories, and which are being read, so that nobody pays twice for the
/// same messages: not from a second window, not after going away and coming back, not after a restart.
///
/// One for the program, shared by its windows; UI thread. The settings outlive it; without them, and where they cannot
/// be written, what is known lasts as long as this. A place is an account's conversation.
class ExtractionProgress : public QObject {
    Q_OBJECT
public:
    using Ticket = quint64;
    /// One conversation, as the settings keep it.
    struct Entry {
        QString place;
        qint64 upTo = 0;
    };
    /// Of how many conversations it is remembered; the oldest go first.
    static constexpr qsizetype most = 1000;

    explicit ExtractionProgress(Settings *settings = nullptr, QObject *parent = nullptr);

    static QString place(const QString &account, const QString &conversationId);

    /// How many messages of a place have been read.
    qsizetype upTo(const QString &place) const { return m_upTo.value(place); }
    bool isReading(const QString &place) const { return m_reading.contains(place); }
    /// Whether the reading `ticket` is one of this place.
    bool isReading(const QString &place, Ticket ticket) const { return m_reading.value(place) == ticket; }

    /// A reading begins; to be ended with what is returned, whatever became of it.
    Ticket begin(const QString &place);
    /// @param upTo what has been read; none when that is not known
    void end(Ticket ticket, std::optional<qsizetype> upTo);
    /// What was read of `from`, or is being read, is also read of `to`: the same messages under another id.
    void carryOver(const QString &from, const QString &to);

Q_SIGNALS:
    void changed();

private:
    void note(const QString &place, qsizetype upTo);
    void store();

    Settings *m_settings;
    QHash<QString, qsizetype> m_upTo;
    QStringList m_order; ///< of the places, the last noted at the end
    QHash<QString, Ticket> m_reading;
    Ticket m_last = 0;
};
BOOST_DESCRIBE_STRUCT(ExtractionProgress::Entry, (), (place, upTo))

} // namespace lmp
