import QtQuick
import QtQuick.Templates as T

/// A button with an icon alone. Its `text` is what a screen reader says and what the tooltip shows.
T.AbstractButton {
    id: root

    property bool danger: false
    property string iconName
    property real iconSize: 18
    readonly property color ink: root.inkOf(root.enabled, root.checked, root.hovered || root.visualFocus)

    function inkOf(enabled: bool, checked: bool, met: bool): color {
        if (!enabled)
            return Theme.disabled;
        if (root.danger)
            return Theme.danger;
        return checked ? Theme.accent : met ? Theme.text : Theme.text2;
    }

    function press(event: KeyEvent): void {
        // One that is hidden may keep the keyboard; nobody means it then.
        if (!event.isAutoRepeat && root.visible && root.enabled) {
            if (root.checkable)
                root.toggle();
            root.clicked();
        }
        event.accepted = true;
    }

    Accessible.checkable: root.checkable
    Accessible.checked: root.checked
    Accessible.description: root.enabled ? "" : "不可用"
    Accessible.name: root.text
    Accessible.role: Accessible.Button
    Keys.onEnterPressed: event => root.press(event)
    Keys.onReturnPressed: event => root.press(event)
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    implicitHeight: Math.max(Theme.target, Theme.control)
    implicitWidth: implicitHeight

    background: Rectangle {
        color: root.checked ? Theme.ownBubble : Theme.veil(Theme.text, root.down ? 0.12 : root.hovered && root.enabled ? 0.06 : 0)
        radius: Theme.radiusControl

        LMPFocusRing {
            shown: root.visualFocus
        }
    }

    contentItem: Item {
        LMPIcon {
            anchors.centerIn: parent
            color: root.ink
            name: root.iconName
            size: root.iconSize
        }
    }

    Loader {
        readonly property bool wanted: root.text !== "" && (root.hovered || root.visualFocus)

        onWantedChanged: {
            if (wanted)
                setSource("LMPButtonTip.qml", {
                        "button": root
                    });
            else
                source = "";
        }
    }
}
