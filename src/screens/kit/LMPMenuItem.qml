import QtQuick
import QtQuick.Templates as T

/// A line of an LMPMenu: words, and where they exist an icon, a tick, and the keys that do the same.
T.MenuItem {
    id: root

    property bool danger: false
    property string iconName
    property string shortcutText
    readonly property color ink: !root.enabled ? Theme.disabled : root.danger ? Theme.danger : Theme.text

    function press(event: KeyEvent): void {
        if (root.checkable)
            root.toggle();
        root.clicked();
        event.accepted = true;
    }

    Accessible.description: root.enabled ? "" : "不可用"
    Accessible.name: root.text
    Accessible.role: Accessible.MenuItem
    Keys.onEnterPressed: event => root.press(event)
    Keys.onReturnPressed: event => root.press(event)
    hoverEnabled: true
    implicitHeight: Math.max(Theme.target, Theme.dp(30))
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    leftPadding: Theme.space8
    rightPadding: Theme.space8

    background: Rectangle {
        color: root.highlighted && root.enabled ? Theme.hover : "transparent"
        radius: Theme.radiusControl

        LMPFocusRing {
            inside: true
            shown: root.visualFocus
        }
    }

    contentItem: LMPMenuLine {
        iconName: root.checkable ? (root.checked ? "check" : "") : root.iconName
        ink: root.ink
        keysInk: root.enabled ? Theme.text3 : Theme.disabled
        marked: root.checkable
        shortcutText: root.shortcutText
        text: root.text
    }
}
