import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// How a memory came to its wording, and the way back to the one before.
LMPSheet {
    id: root

    required property MemoryHistoryModel history
    readonly property int state: root.history.state
    readonly property bool wanted: root.state !== MemoryHistoryModel.Closed
    readonly property bool busy: root.state === MemoryHistoryModel.Loading
    readonly property bool readable: root.state === MemoryHistoryModel.Loaded || root.state === MemoryHistoryModel.Reverting
    readonly property bool stuck: root.history.failed && !root.busy

    primaryText: root.stuck ? "重新打开" : root.busy ? "" : "好"
    secondaryText: root.stuck || root.busy ? "关闭" : ""
    title: "版本历史"

    onAccepted: {
        if (root.stuck)
            root.history.reload();
        else
            root.close();
    }
    onClosed: root.history.close()
    onWantedChanged: {
        if (root.wanted)
            root.open();
        else
            root.close();
    }

    LMPBusy {
        running: root.busy
        text: root.history.message
    }

    LMPBanner {
        text: root.history.message
        tone: root.history.failed ? LMPBanner.Warning : LMPBanner.Info
        visible: !root.busy && root.history.message !== ""
    }

    LMPText {
        Accessible.role: Accessible.Heading
        kind: LMPText.Label
        text: "现在的说法"
        visible: root.readable
        width: parent.width
    }

    LMPText {
        kind: LMPText.Strong
        text: root.history.current
        visible: root.readable
        width: parent.width
    }

    LMPButton {
        busy: root.state === MemoryHistoryModel.Reverting
        text: "改回上一版"
        visible: root.history.canRevert || busy
        onClicked: root.history.revert()
    }

    LMPSeparator {
        visible: root.readable
    }

    LMPText {
        color: Theme.text2
        text: "这条记忆还没有改动过。"
        visible: root.state === MemoryHistoryModel.Loaded && root.history.count === 0
        width: parent.width
    }

    Column {
        spacing: Theme.space12
        visible: root.readable
        width: parent.width

        Repeater {
            delegate: MemoryHistoryRow {}
            model: root.history.entries
        }
    }
}
