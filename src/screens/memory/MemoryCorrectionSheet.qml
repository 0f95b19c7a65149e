import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// Says a memory in other words. What is typed stays until it is saved or given up, however the sheet is closed.
LMPSheet {
    id: root

    required property MemoryCorrectionModel correction
    readonly property int state: root.correction.state
    readonly property bool wanted: root.state !== MemoryCorrectionModel.Closed
    readonly property bool saved: root.state === MemoryCorrectionModel.Saved || root.state === MemoryCorrectionModel.Undoing
    readonly property bool saving: root.state === MemoryCorrectionModel.Saving

    function act(): void {
        if (root.saved)
            root.close();
        else if (root.correction.mustReopen)
            root.correction.reopen();
        else
            root.correction.save();
    }

    primaryBusy: root.saving || root.state === MemoryCorrectionModel.Loading
    primaryEnabled: root.correction.canAct
    primaryText: root.saved ? "好" : root.correction.mustReopen ? "重新打开" : "保存"
    secondaryText: root.saved ? "" : "先不改"
    title: root.saved ? root.correction.savedTitle : "纠正这条记忆"

    onAccepted: root.act()
    onClosed: root.correction.close()
    onOpened: field.forceActiveFocus()
    onWantedChanged: {
        if (root.wanted)
            root.open();
        else
            root.close();
    }

    LMPText {
        text: root.correction.savedText
        visible: root.saved
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        text: "现在的说法：" + root.correction.current
        visible: root.correction.current !== "" && (root.saved || root.correction.typed)
        width: parent.width
    }

    LMPTextArea {
        id: field

        helpText: root.correction.becomesFact
        label: "改成"
        maximumLines: 8
        readOnly: root.saving
        visible: !root.saved
        width: parent.width
        onTextEdited: root.correction.text = field.text

        Binding on text {
            value: root.correction.text
        }
    }

    LMPBanner {
        text: root.correction.message
        tone: root.saved ? LMPBanner.Info : LMPBanner.Warning
        visible: root.correction.message !== ""
    }

    LMPButton {
        busy: root.state === MemoryCorrectionModel.Undoing
        text: "改回原来的说法"
        visible: root.correction.canUndo || busy
        onClicked: root.correction.undo()
    }

    Flow {
        spacing: Theme.space8
        visible: !root.saved && root.correction.typed
        width: parent.width

        LMPText {
            color: Theme.text2
            height: Math.max(Theme.control, implicitHeight)
            kind: LMPText.Caption
            text: "没保存的改动留在本机，关掉再打开还在。"
            verticalAlignment: Text.AlignVCenter
        }

        LMPButton {
            enabled: !root.saving
            kind: LMPButton.Link
            text: "放弃改动"
            onClicked: question.open()
        }
    }

    LMPText {
        Accessible.role: Accessible.Heading
        kind: LMPText.Label
        text: "它从哪里来"
        visible: origins.count > 0 && !root.saved
        width: parent.width
    }

    Column {
        spacing: Theme.space8
        visible: origins.count > 0 && !root.saved
        width: parent.width

        Repeater {
            id: origins

            delegate: MemoryOriginRow {}
            model: root.correction.origins
        }
    }

    LMPDiscardDialog {
        id: question

        onDiscarded: root.correction.discard()
    }
}
