#pragma once

#include "core/APIError.h"

#include <QString>

namespace lmp {

/// The sentences of the memory ledger, each in one place for the window and the terminal.
class MemoryTexts {
public:
    // The ledger.
    static QString loadFailed();
    static QString emptyTitle();
    static QString emptyText();
    static QString noMatchTitle();
    static QString noMatchText();
    static QString accountChanged();
    static QString superseded(); ///< on the older memory
    static QString supersedes(); ///< on the newer one
    static QString forgetNote();
    /// @param content wording of the older memory
    static QString confirmedInPlaceOf(const QString &content);

    // What one does in it, and what becomes of that.
    static QString forgotten(const QString &content);
    static QString restored();
    /// @param what was tried: "冻结", "忘记"; @param reason of the service
    static QString notDone(const QString &what, const QString &reason);
    /// Of what may have been done or not.
    static QString outcomeUnknown();
    static QString candidateNotConfirmed();
    static QString candidateConfirmed();

    // Correcting.
    static QString noRevision();
    static QString becomesFact();
    static QString correctionSavedTitle();
    static QString correctionSavedText();
    /// @param current wording, or empty when it is not known
    static QString correctionConflict(const QString &current);
    static QString correctionUnknown();
    static QString revisionNotConfirmed();

    // Going back.
    static QString reverted();
    static QString revertedIsFact();
    static QString nothingToRevert();
    static QString revertConflict();
    static QString revertUnknown();
    static QString revertNotConfirmed();

    // History.
    static QString historyLoading();
    static QString historyUnreadable(const QString &reason);

    // Import.
    static QString importReadsOnly();
    static QString importChatFile();
    static QString importFiller();
    static QString importNothingTitle();
    static QString importNothingText();
    static QString importScanFailed();
    static QString importSkippedNote();
    static QString importNothingWritten();
    static QString importFailedItems(qsizetype count);
    static QString importSupersededItems(qsizetype count);
    static QString importWritten(qsizetype count);
    /// @param taken, all pieces of a text that has more than are read at once
    static QString importCut(qsizetype taken, qsizetype all);
    /// After an import of a longer text: what of it waits.
    static QString importRest(qsizetype count);

    // Candidates from a chat.
    static QString extractNote();
    static QString extractNothingNew();
    static QString extractNoCandidates();
    static QString extractFailed();
    /// Of a conversation that is longer than what is read at once.
    static QString extractLeft(qsizetype count);
    static QString extractIncognito();
    /// @param amount Pip
    static QString extractCost(qint64 amount);
    static QString candidatesNote();
    static QString candidatesLater();
    static QString candidatesLaterNote();
    /// @param content wording of the older memory
    static QString candidateTookPlaceOf(const QString &content);
    static QString candidateNotTaken();
    static QString candidateNotDropped();
};

} // namespace lmp
