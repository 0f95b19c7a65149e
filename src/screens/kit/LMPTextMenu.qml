import QtQuick

/// What the right button and the menu key offer on a text that can be edited: on `line` or on `area`, whichever is set.
/// Made when it is asked for.
LMPMenu {
    id: root

    property TextEdit area: null
    property TextInput line: null
    readonly property bool chosen: root.line ? root.line.selectedText !== "" : root.area !== null && root.area.selectedText !== ""
    readonly property bool filled: root.line ? root.line.length > 0 : root.area !== null && root.area.length > 0
    readonly property bool pastes: root.line ? root.line.canPaste : root.area !== null && root.area.canPaste
    readonly property bool secret: root.line !== null && root.line.echoMode !== TextInput.Normal
    readonly property bool writable: root.line ? !root.line.readOnly : root.area !== null && !root.area.readOnly

    LMPMenuItem {
        enabled: root.chosen && root.writable && !root.secret
        text: "剪切"
        onTriggered: root.line ? root.line.cut() : root.area.cut()
    }

    LMPMenuItem {
        enabled: root.chosen && !root.secret
        text: "拷贝"
        onTriggered: root.line ? root.line.copy() : root.area.copy()
    }

    LMPMenuItem {
        enabled: root.writable && root.pastes
        text: "粘贴"
        onTriggered: root.line ? root.line.paste() : root.area.paste()
    }

    LMPMenuItem {
        enabled: root.filled
        text: "全选"
        onTriggered: root.line ? root.line.selectAll() : root.area.selectAll()
    }
}
