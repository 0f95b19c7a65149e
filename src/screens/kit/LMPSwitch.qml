import QtQuick
import QtQuick.Templates as T

/// Something that is on or off at once, with words at the left and what it means below them.
T.Switch {
    id: root

    property string description

    Accessible.description: root.enabled ? root.description : "不可用"
    Accessible.name: root.text
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    implicitHeight: Math.max(Theme.control, implicitContentHeight + topPadding + bottomPadding)
    implicitWidth: implicitContentWidth
    verticalPadding: Theme.space4

    contentItem: LMPChoiceText {
        active: root.enabled
        description: root.description
        rightPadding: root.indicator.width + Theme.space16
        text: root.text
    }

    indicator: Rectangle {
        border.color: !root.enabled ? Theme.border : root.checked ? Theme.accent : Theme.borderStrong
        border.width: 1
        color: root.checked ? (root.enabled ? Theme.accent : Theme.disabled) : root.hovered && root.enabled ? Theme.hover : Theme.sunken
        implicitHeight: Theme.dp(20)
        implicitWidth: Theme.dp(36)
        radius: height / 2
        x: root.width - width
        y: root.topPadding + Math.round((Math.max(Theme.dp(22), Theme.target - 2 * root.topPadding) - height) / 2)

        Rectangle {
            border.color: root.checked ? "transparent" : root.enabled ? Theme.borderStrong : Theme.disabled
            border.width: root.checked ? 0 : 1
            color: root.checked ? Theme.onAccent : Theme.surface
            height: parent.height - Theme.dp(6)
            radius: height / 2
            width: height
            x: root.checked ? parent.width - width - Theme.dp(3) : Theme.dp(3)
            y: Theme.dp(3)

            Behavior on x  {
                NumberAnimation {
                    duration: Theme.motion
                    easing.type: Easing.OutCubic
                }
            }
        }

        LMPFocusRing {
            around: parent.radius
            shown: root.visualFocus
        }
    }
}
