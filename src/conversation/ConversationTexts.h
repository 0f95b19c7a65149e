#pragma once

#include <QStringList>

namespace lmp {

/// The sentences of a conversation, each in one place for the window and the terminal.
class ConversationTexts {
public:
    // Why an input was not submitted.
    static QString confirmationStale();
    static QString heldByReply();
    static QString heldByCreation();
    static QString nothingTyped();
    static QString nothingOpen();
    static QString accountChanged();

    // How a turn ended, and what stands over it.
    static QString relayUnconfigured();
    static QString refused();
    static QString chargedEmpty();
    static QString endedEarly();
    static QString interrupted();
    static QString plainUnconfirmed();
    static QString stopped();
    static QString leftReply();
    static QString incognitoBanner();
    static QString feedbackNotSent();

    // Saving and opening.
    static QString notSynchronised();
    static QString notKept();
    /// @param titles of conversations that were left before the disk had taken them
    static QString leftNotKept(const QStringList &titles);
    static QString conflict();
    static QString conflictNotKept();
    /// After the title of a conversation that was saved as one of its own.
    static QString copyMark();
    static QString switchedAway();
    static QString anotherConversation();
    /// @param reason why the list of conversations could not be had
    static QString recentUnreadable(const QString &reason);
    static QString draftWithoutAccount();
    static QString draftWithoutConversation();
    static QString draftsUnreadable();
    static QString draftNotWritten();
    static QString draftChangedElsewhere();

    // What stands in the input box.
    static QString inputWithoutScope();
    static QString inputTooLarge();
    static QString inputChangedElsewhere();
    static QString inputUnreadable();
    static QString inputsKeptUnread();
    static QString inputNotWritten();

    // Asking for another answer.
    static QString retryOffer();
    static QString retryNeedsSave();
    static QString retryUnconfirmed();
    static QString retryUnmatched();
    static QString retryConversationChanged();
    static QString retryWorkspaceChanged();
    static QString retryRunning();
    static QString retryStale();
    static QString retryWithoutMessageId();
    static QString retryMismatch();

    // Under a message.
    static QString failedMessage();
    static QString awaitingReply();
    static QString replyArriving();
    static QString unknownMessage();
    static QString unknownCreation();
    static QString creationReceiptPending();
    static QString inputBoxOccupied();
    /// @param count of the memories a reply drew on
    static QString usedMemories(qsizetype count);
    /// The line over the list of them.
    static QString usedMemoriesNote(qsizetype count);
    /// @param count of the drafts that could not be read
    static QString draftsKeptUnread(qsizetype count);
};

} // namespace lmp
