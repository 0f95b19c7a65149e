#pragma once

#include "core/APIClient.h"
#include "identity/MemoryBundle.h"
#include "identity/MemoryCorrectionOutcome.h"
#include "identity/MemoryHistoryResp.h"
#include "identity/MemoryRevertOutcome.h"

namespace lmp {

/// Reads and changes what the twin remembers of its owner.
///
/// A value that holds the client and nothing else; any thread with an event loop. Fails with the client's APIError,
/// except for corrections and reverts, whose outcome is what the person must be told. Nothing is sent twice.
class MemoryService {
public:
    struct ExtractMessage {
        QString role; ///< "user" or "assistant"
        QString content;
    };
    struct ExtractBody {
        QList<ExtractMessage> messages;
    };
    struct ExtractResp {
        QList<MemoryCandidateDTO> candidates;
        std::optional<qint64> pipCharged; ///< Pip
        std::optional<qint64> balance;    ///< Pip
        std::optional<QString> skipped;   ///< why nothing was proposed
    };
    struct ConfirmBody {
        QString candidateId;
    };
    struct ConfirmResp {
        std::optional<MemoryItemDTO> item;
        std::optional<QString> supersededContent; ///< wording of the older memory that the new one replaced
    };
    struct FreezeBody {
        QString memoryId;
        bool frozen = false;
    };
    struct CorrectBody {
        QString memoryId;
        QString content;
        QString expectedRevision;
    };
    struct CorrectResp {
        QString previous;
        QString revision;
    };
    struct RevertBody {
        QString memoryId;
        QString expectedRevision;
    };
    struct RevertResp {
        QString content;
        bool changed = false;
        std::optional<QString> note;
        QString revision;
    };
    struct ForgetBody {
        QString memoryId;
    };
    struct ForgetResp {
        std::optional<MemoryItemDTO> item; ///< what an undo posts back
    };
    struct RestoreBody {
        MemoryItemDTO item;
    };
    struct ResolveBody {
        QString chapterId;
        QString decision; ///< a word of the service
    };

    explicit MemoryService(APIClient api);

    QCoro::Task<Result<MemoryBundle>> load() const;
    /// Asks for candidates in `messages`; charged. Takes as long as a reply takes.
    QCoro::Task<Result<ExtractResp>> extract(const QList<ExtractMessage> &messages) const;
    QCoro::Task<Result<ConfirmResp>> confirm(const QString &candidateId) const;
    QCoro::Task<Result<APIClient::Empty>> dismiss(const QString &candidateId) const;
    /// @param expectedRevision of the history that the person saw
    QCoro::Task<MemoryCorrectionOutcome> correct(const QString &memoryId, const QString &content,
                                                 const QString &expectedRevision) const;
    QCoro::Task<MemoryRevertOutcome> revert(const QString &memoryId, const QString &expectedRevision) const;
    QCoro::Task<Result<APIClient::Empty>> freeze(const QString &memoryId, bool frozen) const;
    QCoro::Task<Result<ForgetResp>> forget(const QString &memoryId) const;
    /// Undoes a forget.
    QCoro::Task<Result<APIClient::Empty>> restore(const MemoryItemDTO &item) const;
    QCoro::Task<Result<MemoryHistoryResp>> history(const QString &memoryId) const;
    QCoro::Task<Result<APIClient::Empty>> resolveChapter(const QString &chapterId, const QString &decision) const;

private:
    static QCoro::Task<MemoryCorrectionOutcome> corrected(QCoro::Task<Result<CorrectResp>> pending);
    static QCoro::Task<MemoryRevertOutcome> reverted(QCoro::Task<Result<RevertResp>> pending);

    APIClient m_api;
};
BOOST_DESCRIBE_STRUCT(MemoryService::ExtractMessage, (), (role, content))
BOOST_DESCRIBE_STRUCT(MemoryService::ExtractBody, (), (messages))
BOOST_DESCRIBE_STRUCT(MemoryService::ExtractResp, (), (candidates, pipCharged, balance, skipped))
BOOST_DESCRIBE_STRUCT(MemoryService::ConfirmBody, (), (candidateId))
BOOST_DESCRIBE_STRUCT(MemoryService::ConfirmResp, (), (item, supersededContent))
BOOST_DESCRIBE_STRUCT(MemoryService::FreezeBody, (), (memoryId, frozen))
BOOST_DESCRIBE_STRUCT(MemoryService::CorrectBody, (), (memoryId, content, expectedRevision))
BOOST_DESCRIBE_STRUCT(MemoryService::CorrectResp, (), (previous, revision))
BOOST_DESCRIBE_STRUCT(MemoryService::RevertBody, (), (memoryId, expectedRevision))
BOOST_DESCRIBE_STRUCT(MemoryService::RevertResp, (), (content, changed, note, revision))
BOOST_DESCRIBE_STRUCT(MemoryService::ForgetBody, (), (memoryId))
BOOST_DESCRIBE_STRUCT(MemoryService::ForgetResp, (), (item))
BOOST_DESCRIBE_STRUCT(MemoryService::RestoreBody, (), (item))
BOOST_DESCRIBE_STRUCT(MemoryService::ResolveBody, (), (chapterId, decision))

} // namespace lmp
