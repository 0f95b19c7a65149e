#pragma once

#include "conversation/ConversationSession.h"
#include "conversation/ExtractionProgress.h"
#include "conversation/MemoryExtractService.h"
#include "identity/MemoryService.h"
#include "screens/kit/RecordListModel.h"

#include <QPointer>
#include <QtQmlIntegration>

#include <functional>

namespace lmp {

/// Has the open conversation read for memories, and takes the person's word on each that was found.
///
/// Part of the chat's model; session and progress outlive it. UI thread. What is found waits at the service whatever
/// happens here. An answer for a conversation that is no longer open is only counted; nothing is sent twice.
class ExtractionModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("part of a ChatModel")
    Q_PROPERTY(QString note READ note CONSTANT)
    Q_PROPERTY(QString candidatesNote READ candidatesNote CONSTANT)
    Q_PROPERTY(QString laterText READ laterText CONSTANT)
    Q_PROPERTY(QString laterNote READ laterNote CONSTANT)
    Q_PROPERTY(bool extracting READ extracting NOTIFY changed)
    /// What became of the last reading, when it found nothing.
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(QString costText READ costText NOTIFY changed)
    /// Said when the conversation is longer than what is read at once; else empty.
    Q_PROPERTY(QString leftText READ leftText NOTIFY changed)
    /// There are candidates to be looked at; `close` puts them away.
    Q_PROPERTY(bool open READ isOpen NOTIFY changed)
    Q_PROPERTY(QAbstractItemModel *candidates READ candidates CONSTANT)
    /// What became of the last answer to a candidate.
    Q_PROPERTY(QString report READ report NOTIFY changed)
    Q_PROPERTY(bool reportFailed READ reportFailed NOTIFY changed)
    Q_PROPERTY(bool allHandled READ allHandled NOTIFY changed)
    /// None of them is a memory yet.
    Q_PROPERTY(bool noneTaken READ noneTaken NOTIFY changed)
public:
    struct Row {
        QString candidateId;
        QString content;
        QString why;
        QString scope;
        bool busy = false;   ///< an answer to it is under way
        QString handledText; ///< what became of it; empty while it waits
        bool operator==(const Row &) const = default;
    };

    /// @param isIdle whether the conversation is not just being added to
    /// @param progress null where none is shared: then what was read is known as long as this is there
    ExtractionModel(const APIClient &api, ConversationSession &session, std::function<bool()> isIdle,
                    ExtractionProgress *progress = nullptr, QObject *parent = nullptr);

    static QString note();
    static QString candidatesNote();
    static QString laterText();
    static QString laterNote();
    bool extracting() const { return m_progress->isReading(place()); }
    const QString &message() const { return m_message; }
    /// Pip, of the last reading.
    qint64 extractCharge() const { return m_extractCharge; }
    QString costText() const;
    QString leftText() const;
    /// How many messages of the open conversation have been read.
    qsizetype extractedUpTo() const { return m_progress->upTo(place()); }
    const std::vector<Row> &extracted() const { return m_extracted.records(); }
    bool isOpen() const { return m_open; }
    QAbstractItemModel *candidates() { return &m_extracted; }
    const QString &report() const { return m_report; }
    bool reportFailed() const { return m_reportFailed; }
    bool allHandled() const;
    bool noneTaken() const;

    /// Reads what has been said since the last time.
    Q_INVOKABLE void extract();
    Q_INVOKABLE void confirm(const QString &candidateId);
    Q_INVOKABLE void dismiss(const QString &candidateId);
    /// Puts the candidates away; those without an answer wait in the ledger.
    Q_INVOKABLE void close();
    /// Forgets what was said of the last reading.
    Q_INVOKABLE void clearMessage();
    /// What is open went by another id before: what was read of it then need not be read again.
    void carryOver(const QString &conversationId);

Q_SIGNALS:
    void changed();

private:
    QCoro::Task<> extractNow(MemoryExtractService::Portion portion, ExtractionProgress::Ticket ticket);
    void take(const MemoryExtractService::Resp &answer);
    QCoro::Task<> confirmNow(QString candidateId);
    QCoro::Task<> dismissNow(QString candidateId);
    void reset();
    void say(const QString &message);
    bool begin(const QString &candidateId);
    void end(const QString &candidateId, const QString &handledText, const QString &report, bool failed);
    /// The account and conversation that are open.
    QString place() const;

    MemoryExtractService m_service;
    MemoryService m_memories;
    ConversationSession &m_session;
    std::function<bool()> m_isIdle;
    ExtractionProgress m_own; ///< where none is shared
    QPointer<ExtractionProgress> m_progress;
    quint64 m_generation = 0; ///< counts the conversations
    QString m_message;
    qint64 m_extractCharge = 0;
    qsizetype m_left = 0;
    bool m_open = false;
    QString m_report;
    bool m_reportFailed = false;
    RecordListModel<Row, &Row::candidateId> m_extracted;
};
BOOST_DESCRIBE_STRUCT(ExtractionModel::Row, (), (candidateId, content, why, scope, busy, handledText))

} // namespace lmp
