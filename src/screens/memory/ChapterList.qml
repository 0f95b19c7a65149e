import QtQuick
import Lumenpair.Memory

/// The chapters of the owner's story.
MemoryCardList {
    id: root

    required property MemoryLedgerModel ledger

    Accessible.name: "章节"
    delegate: ChapterCard {}
    model: root.ledger.chapters
}
