#pragma once

#include "conversation/UsedMemory.h"
#include "identity/ContinuousUseNotice.h"
#include "identity/CrisisSignal.h"

#include <QList>
#include <QString>

#include <boost/describe.hpp>

#include <optional>

/// The records of `chat --jsonl`, one a line; what is absent is left out.
namespace lmp::jsonl {

struct TurnStarted {
    QString type = QStringLiteral("turn.started");
    QString conversationId;
    QString messageId;
};
BOOST_DESCRIBE_STRUCT(TurnStarted, (), (type, conversationId, messageId))

struct Delta {
    QString type = QStringLiteral("delta");
    QString text;
};
BOOST_DESCRIBE_STRUCT(Delta, (), (type, text))

struct Memories {
    QString type = QStringLiteral("memories");
    QList<UsedMemory> used;
};
BOOST_DESCRIBE_STRUCT(Memories, (), (type, used))

struct Safety {
    QString type = QStringLiteral("safety");
    std::optional<CrisisSignal> crisis;
    std::optional<ContinuousUseNotice> continuousUse;
};
BOOST_DESCRIBE_STRUCT(Safety, (), (type, crisis, continuousUse))

struct TurnCompleted {
    QString type = QStringLiteral("turn.completed");
    QString state = QStringLiteral("submitted");
    QString text;
    std::optional<QString> requestId;
    std::optional<qint64> charged;
    std::optional<qint64> balance;
    std::optional<QString> notice;
};
BOOST_DESCRIBE_STRUCT(TurnCompleted, (), (type, state, text, requestId, charged, balance, notice))

struct TurnFailed {
    QString type = QStringLiteral("turn.failed");
    QString state;
    QString reason;
};
BOOST_DESCRIBE_STRUCT(TurnFailed, (), (type, state, reason))

} // namespace lmp::jsonl
