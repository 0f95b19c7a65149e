#pragma once

#include "conversation/KeptText.h"
#include "conversation/KeptTextStore.h"

namespace lmp {

/// One text on its way to the disk, and what became of it. A value.
struct KeptTextWrite {
    using Entry = KeptText::Entry;
    using StoreError = ConversationInputDraftStore::StoreError;

    std::optional<QString> account = {};
    QString box = {};  ///< whose text it is
    bool copy = false; ///< beside the file that belongs to it
    Entry entry = {};
    QDateTime now = {};
    KeptText::WriteId writeId = {};

    // What became of it.
    std::optional<QString> written = {};
    std::optional<StoreError> error = {};
    std::optional<Entry> theirs = {}; ///< what another window has written in its place

    /// Writes them in their order; to be run on the file thread. After a text of an account was refused, none of that
    /// account is removed.
    static QList<KeptTextWrite> run(const KeptTextStore &store, QList<KeptTextWrite> writes);
};

} // namespace lmp
