#pragma once

#include "conversation/ConversationInputDraftStore.h"
#include "conversation/ConversationInputEditCheckpoint.h"

#include <memory>

namespace lmp {

/// One text that somebody is typing, and how it stands with the disk. A value.
struct KeptText {
    /// What the text is for.
    struct Place {
        QString id = {};          ///< empty: not known yet
        QString title = {};       ///< empty while a conversation has no message
        qint64 cloudRevision = 0; ///< 0 while the service does not have it; -1 when that is not known
        bool incognito = false;   ///< kept nowhere

        bool isFresh() const { return title.isEmpty() && cloudRevision == 0; }
    };
    /// What this window last read or wrote of a file. Touched on the file thread alone, where that is known.
    using WriteId = std::shared_ptr<std::optional<QString>>;
    using Entry = ConversationInputDraftStore::Entry;
    /// A file beside the one that belongs to the text.
    struct Copy {
        QString id = {}; ///< empty: there is none, and never was
        WriteId writeId = std::make_shared<std::optional<QString>>();
        std::shared_ptr<const void> claim = {}; ///< nobody else takes it for left behind while this is held
    };
    /// What was sent, and is not known to be on disk as a message yet: until it is, its files stay.
    struct Held {
        quint64 ticket = 0;
        bool main = false; ///< the file that belongs to the text may hold it
        QList<Copy> copies = {};
    };

    Place place = {};
    std::optional<QString> account = {}; ///< whose text it is
    QString keptAs = {};                 ///< the id it is kept under
    ConversationInput input = {};
    QDateTime changedAt = {}; ///< when it was typed last
    ConversationInputEditCheckpoint checkpoint = {};
    bool restored = false; ///< what the disk had is in it; before that nothing is written over it
    WriteId writeId = std::make_shared<std::optional<QString>>();
    std::optional<QString> draftWriteId = {}; ///< the same, as far as this thread has heard
    quint64 writes = 0;                       ///< counts what was begun to be written
    std::optional<ConversationInputDraftStore::StoreError> error = {};
    /// What another window wrote in the meantime: nothing goes over it until the person has chosen.
    std::optional<Entry> theirs = {};
    std::optional<ConversationInput> givenUp = {}; ///< the one of the two that was not chosen, to be had back
    Copy copy = {};                                ///< where our own text is kept while its file is not ours to write
    std::optional<Held> held = {};

    /// Whether the text is kept beside the file that belongs to it.
    bool isBeside() const { return theirs || !restored || (held && held->main); }
    bool isDirty() const {
        const bool waits = held && held->main && input.isEmpty();
        return checkpoint.edited && !place.incognito && !waits;
    }
};

} // namespace lmp
