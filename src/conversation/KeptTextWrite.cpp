#include "conversation/KeptTextWrite.h"

#include <QHash>

namespace lmp {

QList<KeptTextWrite> KeptTextWrite::run(const KeptTextStore &store, QList<KeptTextWrite> writes) {
    QHash<QString, StoreError> refused;
    for (KeptTextWrite &write : writes) {
        const QString account = write.account.value_or(QString());
        // What is removed may be what could not be written elsewhere; a disk without room still removes.
        if (write.entry.input.isEmpty() && refused.contains(account)) {
            write.error = refused.value(account);
            continue;
        }
        const auto saved = store.save(account, write.entry, *write.writeId, write.now);
        if (saved) {
            write.written = *write.writeId = *saved;
            continue;
        }
        // An empty box has nothing that could be lost, and leaves the other window's input alone.
        if (saved.error() == StoreError::changedElsewhere && write.entry.input.isEmpty())
            continue;
        write.error = saved.error();
        if (saved.error() == StoreError::changedElsewhere && !write.copy) {
            write.theirs = store.read(account, write.entry.id).value_or(std::nullopt);
            continue;
        }
        // A copy is nobody else's; with a stranger's in its place ours is simply not on disk.
        if (saved.error() == StoreError::changedElsewhere)
            write.error = StoreError::storage;
        refused.insert(account, *write.error);
    }
    return writes;
}

} // namespace lmp
