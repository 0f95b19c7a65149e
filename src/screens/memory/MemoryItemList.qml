import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// The memories that match. Their cards are given from outside, since they know this list.
MemoryCardList {
    id: root

    /// Something else than correcting is to be done with one.
    signal menuRequested(memoryId: string, frozen: bool, from: Item)

    Accessible.name: "记忆"
    model: root.ledger.items

    footer: Item {
        height: more.visible ? more.height + Theme.space16 : 0
        width: root.width

        LMPButton {
            id: more

            anchors.horizontalCenter: parent.horizontalCenter
            text: "再看一些（还有 " + root.ledger.items.hidden + " 条）"
            visible: root.ledger.items.hidden > 0
            y: Theme.space16
            onClicked: root.ledger.items.showMore()
        }
    }
}
