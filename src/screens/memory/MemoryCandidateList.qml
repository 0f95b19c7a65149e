import QtQuick
import Lumenpair.Memory

/// The candidates that wait for their owner's word.
MemoryCardList {
    id: root

    required property MemoryLedgerModel ledger

    Accessible.name: "等你确认"
    delegate: MemoryCandidateCard {}
    model: root.ledger.candidates
}
