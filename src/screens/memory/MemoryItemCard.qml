import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// One memory: its wording, how sure it is and where it comes from, and what can be done about it.
MemoryCard {
    id: root

    required property string memoryId
    required property string content
    required property string truthText
    required property string detail
    required property bool frozen
    required property bool superseded
    required property bool supersedes
    required property bool busy
    required property bool drafted
    readonly property MemoryItemList items: ListView.view as MemoryItemList

    function edit(): void {
        if (!root.busy)
            root.items.ledger.edit(root.memoryId);
    }

    function openMenu(): void {
        if (!root.busy)
            root.items.menuRequested(root.memoryId, root.frozen, more);
    }

    /// What a screen reader says of it.
    function spoken(): string {
        let words = root.content + "，" + root.truthText;
        if (root.frozen)
            words += "，已冻结";
        if (root.superseded)
            words += "，" + root.items.ledger.supersededText;
        if (root.drafted)
            words += "，有没保存的改动";
        return root.detail === "" ? words : words + "，" + root.detail;
    }

    Keys.onMenuPressed: root.openMenu()
    accessibleName: root.spoken()
    onActivated: root.edit()

    Item {
        implicitHeight: Math.max(words.height, tools.height)
        width: parent.width

        LMPText {
            id: words

            elide: Text.ElideRight
            // All of it stands in the correction.
            maximumLineCount: 12
            text: root.content
            width: tools.x - Theme.space8
            // A single line is level with the tools.
            y: Math.max(0, Math.round((tools.height - height) / 2))
        }

        Row {
            id: tools

            anchors.right: parent.right
            spacing: Theme.space4

            LMPSpinner {
                anchors.verticalCenter: parent.verticalCenter
                visible: root.busy
            }

            // Not disabled while it is busy: that would take the keyboard away.
            LMPIconButton {
                focusPolicy: root.buttonPolicy
                iconName: "edit"
                text: "纠正"
                onClicked: root.edit()
            }

            LMPIconButton {
                id: more

                focusPolicy: root.buttonPolicy
                iconName: "more"
                text: "更多"
                onClicked: root.openMenu()
            }
        }
    }

    Flow {
        spacing: Theme.space4
        width: parent.width

        LMPChip {
            text: root.truthText
        }

        LMPChip {
            iconName: "lock"
            text: "已冻结"
            visible: root.frozen
        }

        LMPChip {
            text: root.items ? root.items.ledger.supersedesText : ""
            visible: root.supersedes
        }

        LMPChip {
            text: root.items ? root.items.ledger.supersededText : ""
            tone: LMPChip.Warning
            visible: root.superseded
        }

        LMPChip {
            iconName: "edit"
            text: "有没保存的改动"
            tone: LMPChip.Warning
            visible: root.drafted
        }
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: root.detail
        visible: text !== ""
        width: parent.width
    }
}
