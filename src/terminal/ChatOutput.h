#pragma once

#include "conversation/ChatWithTwinView.h"
#include "terminal/Console.h"

#include <QObject>

namespace lmp {

/// Writes a chat down as it happens: the reply alone on standard output and the rest on standard error, or one event a
/// line.
///
/// Owned by the command, follows the view's signals. UI thread.
class ChatOutput : public QObject {
    Q_OBJECT
public:
    ChatOutput(Console &console, ChatWithTwinView &view, SafetyGateStore &safety, bool jsonl);

private:
    void onStarted(const QString &conversationId, const QString &messageId);
    void onDelta(const QString &text);
    void onCompleted(const TurnOutcome &outcome);
    void onFailed(const TurnOutcome &outcome);
    void onAbandoned();
    void onCrisis();
    void onContinuousUse();
    void sayCharge(const TurnOutcome &outcome);
    void endReply();
    template <class Event>
    void emitLine(const Event &event);

    Console &m_console;
    SafetyGateStore &m_safety;
    bool m_jsonl;
    bool m_endsWithLineFeed = true; ///< of what went to standard output for this turn
    QList<UsedMemory> m_used;
};

} // namespace lmp
