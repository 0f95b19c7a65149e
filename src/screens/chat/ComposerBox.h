#pragma once

#include "conversation/ConversationInputDraftStore.h"
#include "conversation/ConversationInputEditCheckpoint.h"

namespace lmp {

/// The input box of one conversation, and how it stands with the disk. A value.
struct ComposerBox {
    /// The conversation whose input is meant.
    struct Place {
        QString id = {};          ///< empty: none is open, and what is typed goes to the next fresh one
        QString title = {};       ///< empty while it has no message
        qint64 cloudRevision = 0; ///< 0 while the service does not have it; -1 when that is not known
        bool incognito = false;

        bool isFresh() const { return title.isEmpty() && cloudRevision == 0; }
    };
    /// What this window last read or wrote of a file. Touched on the file thread alone, where that is known.
    using WriteId = std::shared_ptr<std::optional<QString>>;
    using Entry = ConversationInputDraftStore::Entry;

    Place place;
    std::optional<QString> account; ///< whose input it is
    QString keptAs;                 ///< the id it is kept under
    ConversationInput input;
    ConversationInputEditCheckpoint checkpoint;
    bool restored = false; ///< what the disk had is in it; before that nothing is written
    WriteId writeId = std::make_shared<std::optional<QString>>();
    std::optional<QString> draftWriteId; ///< the same, as far as this thread has heard
    quint64 writes = 0;                  ///< counts what was begun to be written
    std::optional<ConversationInputDraftStore::StoreError> error;
    /// What another window wrote in the meantime: nothing goes over it until the person has chosen.
    std::optional<Entry> theirs;
    bool copied = false; ///< our own input is kept beside, or has been
    WriteId copyWriteId = std::make_shared<std::optional<QString>>();

    /// Whether what stands in the box is kept beside the file that belongs to it.
    bool isBeside() const { return theirs || !restored; }
    bool isDirty() const { return checkpoint.edited && !place.incognito; }
};

} // namespace lmp
