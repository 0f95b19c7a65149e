import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// What else can be done with a memory. Forgetting can be taken back, so it is not asked about.
LMPMenu {
    id: root

    required property MemoryLedgerModel ledger
    property string memoryId
    property bool frozen: false

    function show(memoryId: string, frozen: bool, from: Item): void {
        root.memoryId = memoryId;
        root.frozen = frozen;
        root.popup(from, from.width - root.implicitWidth, from.height);
    }

    LMPMenuItem {
        iconName: "clock"
        text: "版本历史"
        onTriggered: root.ledger.showHistory(root.memoryId)
    }

    LMPMenuItem {
        iconName: "lock"
        text: root.frozen ? "解冻" : "冻结"
        onTriggered: root.ledger.setFrozen(root.memoryId, !root.frozen)
    }

    LMPMenuItem {
        iconName: "copy"
        text: "复制"
        onTriggered: root.ledger.copy(root.memoryId)
    }

    LMPMenuItem {
        danger: true
        iconName: "trash"
        text: "忘记"
        onTriggered: root.ledger.forget(root.memoryId)
    }
}
