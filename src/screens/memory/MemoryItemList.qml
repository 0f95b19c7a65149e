import QtQuick
import Lumenpair.Memory

/// The memories that match. Their cards are given from outside, since they know this list.
MemoryCardList {
    id: root

    /// Something else than correcting is to be done with one.
    signal menuRequested(memoryId: string, frozen: bool, from: Item)

    Accessible.name: "记忆"
    model: root.ledger.items
}
