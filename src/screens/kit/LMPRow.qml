import QtQuick
import QtQuick.Templates as T

/// A line of a list: a page (one line, 32 high) or a person or thread (two lines with an avatar, 52 high).
/// Unread is bold and counted; a draft and a decision that waits are said in words, not by colour alone.
T.AbstractButton {
    id: root

    property string avatarText
    property bool draft: false
    property string iconName
    property bool selected: false
    property string subtitle
    property string title
    property string trailingText
    property bool twoLine: false
    property int unread: 0
    property string waitingText

    signal menuRequested

    function spoken(): string {
        let words = root.title;
        if (root.unread > 0)
            words += "，未读 " + root.unread + " 条";
        if (root.draft)
            words += "，草稿";
        if (root.waitingText !== "")
            words += "，" + root.waitingText;
        if (root.twoLine && root.subtitle !== "")
            words += "，" + root.subtitle;
        return root.trailingText === "" ? words : words + "，" + root.trailingText;
    }

    function press(event: KeyEvent): void {
        if (!event.isAutoRepeat)
            root.clicked();
        event.accepted = true;
    }

    Accessible.description: root.enabled ? "" : "不可用"
    Accessible.name: root.spoken()
    Accessible.role: Accessible.ListItem
    Accessible.selectable: true
    Accessible.selected: root.selected
    Keys.onEnterPressed: event => root.press(event)
    Keys.onMenuPressed: root.menuRequested()
    Keys.onReturnPressed: event => root.press(event)
    focusPolicy: Qt.StrongFocus
    horizontalPadding: Theme.space8
    hoverEnabled: true
    implicitHeight: root.twoLine ? Theme.dp(52) : Math.max(Theme.target, Theme.control)
    implicitWidth: Theme.dp(232)
    text: root.title

    background: Rectangle {
        color: root.selected || root.down ? Theme.ownBubble : root.hovered && root.enabled ? Theme.hover : "transparent"
        radius: Theme.radiusRow

        // Selection is told by a bar too: the tint alone is too faint for some eyes.
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accent
            height: Math.round(parent.height * 0.5)
            radius: 1.5
            visible: root.selected
            width: 3
        }

        LMPFocusRing {
            around: Theme.radiusRow
            inside: true
            shown: root.visualFocus
        }
    }

    contentItem: LMPRowContent {
        active: root.enabled
        avatarText: root.avatarText
        draft: root.draft
        iconName: root.iconName
        selected: root.selected
        subtitle: root.subtitle
        title: root.title
        trailingText: root.trailingText
        twoLine: root.twoLine
        unread: root.unread
        waitingText: root.waitingText
    }

    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: root.menuRequested()
    }
}
