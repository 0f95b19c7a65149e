#pragma once

#include "conversation/ConversationInputDraftStore.h"

#include <functional>

namespace lmp {

/// The disk under KeptTexts: any store of the shape of ConversationInputDraftStore.
///
/// A value; blocks on the disk, on any thread. Fails as the store does that it was made of.
class KeptTextStore {
public:
    using Entry = ConversationInputDraftStore::Entry;
    using Listing = ConversationInputDraftStore::Listing;
    template <class T>
    using Outcome = ConversationInputDraftStore::Outcome<T>;

    template <class Store>
    explicit KeptTextStore(Store store)
        : save([store](const QString &account, Entry entry, const std::optional<QString> &known, const QDateTime &now) {
            return store.save(account, std::move(entry), known, now);
        })
        , read([store](const QString &account, const QString &id) { return store.read(account, id); })
        , list([store](const QString &account) { return store.list(account); }) {}

    std::function<Outcome<std::optional<QString>>(const QString &account, Entry entry,
                                                  const std::optional<QString> &known, const QDateTime &now)>
        save;
    std::function<Outcome<std::optional<Entry>>(const QString &account, const QString &id)> read;
    std::function<Outcome<Listing>(const QString &account)> list;
};

} // namespace lmp
