import QtQuick
import Lumenpair.Kit

/// One change of a memory's wording.
Column {
    id: root

    required property int index
    required property string previous
    required property string next
    required property string detail

    spacing: Theme.space2
    width: parent ? parent.width : 0

    // As far from the entry above as from this one.
    Item {
        implicitHeight: Theme.space12 - root.spacing
        visible: root.index > 0
        width: parent.width

        LMPSeparator {}
    }

    LMPText {
        text: root.next
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        text: "之前：" + root.previous
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: root.detail
        visible: text !== ""
        width: parent.width
    }
}
