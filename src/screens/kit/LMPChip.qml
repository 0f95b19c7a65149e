import QtQuick
import QtQuick.Templates as T

/// A few words in a pill: a state, or, `clickable`, something small to press.
Rectangle {
    id: root

    enum Tone {
        Neutral,
        Success,
        Warning,
        Danger,
        Care,
        Accent
    }

    property bool clickable: false
    property string iconName
    property string text
    property int tone: LMPChip.Neutral
    readonly property color ink: root.enabled ? root.inkOf(root.tone) : Theme.disabled

    signal clicked

    function inkOf(tone: int): color {
        switch (tone) {
        case LMPChip.Success:
            return Theme.success;
        case LMPChip.Warning:
            return Theme.warning;
        case LMPChip.Danger:
            return Theme.danger;
        case LMPChip.Care:
            return Theme.care;
        case LMPChip.Accent:
            return Theme.link;
        }
        return Theme.text2;
    }

    function fillOf(tone: int): color {
        switch (tone) {
        case LMPChip.Success:
            return Theme.successSoft;
        case LMPChip.Warning:
            return Theme.warningSoft;
        case LMPChip.Danger:
            return Theme.dangerSoft;
        case LMPChip.Care:
            return Theme.careSoft;
        case LMPChip.Accent:
            return Theme.ownBubble;
        }
        return Theme.sunken;
    }

    function press(event: KeyEvent): void {
        if (!event.isAutoRepeat)
            root.clicked();
        event.accepted = true;
    }

    Accessible.ignored: root.clickable
    Accessible.name: root.text
    Accessible.role: Accessible.StaticText
    border.color: root.clickable ? (root.enabled ? Theme.borderStrong : Theme.border) : "transparent"
    border.width: root.clickable ? 1 : 0
    color: root.fillOf(root.tone)
    implicitHeight: root.clickable ? Theme.target : Theme.dp(24)
    implicitWidth: Math.ceil(words.implicitWidth) + (root.iconName === "" ? 0 : Theme.dp(18)) + 2 * Theme.dp(10)
    radius: height / 2

    Row {
        id: row

        anchors.centerIn: parent
        spacing: Theme.space4

        LMPIcon {
            anchors.verticalCenter: parent.verticalCenter
            color: root.ink
            name: root.iconName
            size: 14
            visible: root.iconName !== ""
        }

        LMPText {
            id: words

            Accessible.ignored: true
            anchors.verticalCenter: parent.verticalCenter
            color: root.ink
            elide: Text.ElideRight
            kind: LMPText.Caption
            text: root.text
            width: Math.min(implicitWidth, root.width - 2 * Theme.dp(10) - (root.iconName === "" ? 0 : Theme.dp(18)))
            wrapMode: Text.NoWrap
        }
    }

    T.AbstractButton {
        id: button

        Accessible.description: root.enabled ? "" : "不可用"
        Accessible.name: root.text
        Accessible.role: Accessible.Button
        Keys.onEnterPressed: event => root.press(event)
        Keys.onReturnPressed: event => root.press(event)
        anchors.fill: parent
        focusPolicy: Qt.StrongFocus
        hoverEnabled: true
        text: root.text
        visible: root.clickable

        background: Rectangle {
            color: Theme.veil(Theme.text, button.down ? 0.12 : button.hovered && root.enabled ? 0.06 : 0)
            radius: root.radius

            LMPFocusRing {
                around: root.radius
                shown: button.visualFocus
            }
        }

        onClicked: root.clicked()
    }
}
