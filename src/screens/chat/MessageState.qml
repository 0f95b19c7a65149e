import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// The line under a message: when, what it cost, what became of it, and what went wrong with it.
Column {
    id: root

    required property MessageItem row
    property bool atRight: false
    property real maximumWidth: 0

    function line(): string {
        let line = root.row.stateText;
        for (const part of [root.row.own ? root.row.retryText : "", root.row.chargeText, root.row.timeText]) {
            if (part !== "")
                line += (line === "" ? "" : " · ") + part;
        }
        return line;
    }

    spacing: Theme.dp(2)
    width: root.maximumWidth

    LMPText {
        Accessible.ignored: true
        color: root.row.state === MessageListModel.Unknown || root.row.state === MessageListModel.Failed ? Theme.warning : Theme.text3
        horizontalAlignment: root.atRight ? Text.AlignRight : Text.AlignLeft
        kind: LMPText.Caption
        text: root.line()
        visible: text.length > 0
        width: root.width
    }
    LMPText {
        Accessible.ignored: true
        color: Theme.danger
        horizontalAlignment: root.atRight ? Text.AlignRight : Text.AlignLeft
        kind: LMPText.Caption
        text: root.row.errorText
        visible: root.row.errorText.length > 0
        width: root.width
    }
}
