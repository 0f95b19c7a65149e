import QtQuick
import Lumenpair.Kit

/// Shows more of a long message of one's own.
LMPButton {
    id: root

    required property MessageItem row

    kind: LMPButton.Link
    text: "再显示一些（还有 " + root.row.hiddenLength + " 字）"

    onClicked: root.row.shownLength += 20000
}
