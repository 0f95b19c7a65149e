import QtQuick
import QtQuick.Templates as T

/// Something that is chosen or not, with words at the right and what it means below them.
T.CheckBox {
    id: root

    property string description

    Accessible.description: root.enabled ? root.description : "不可用"
    Accessible.name: root.text
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    implicitHeight: Math.max(Theme.target, implicitContentHeight + topPadding + bottomPadding)
    implicitWidth: implicitContentWidth
    verticalPadding: Theme.space4

    contentItem: LMPChoiceText {
        active: root.enabled
        description: root.description
        leftPadding: root.indicator.width + Theme.space8
        text: root.text
    }

    indicator: Rectangle {
        readonly property bool filled: root.checkState !== Qt.Unchecked

        border.color: !root.enabled ? Theme.disabled : filled ? Theme.accent : root.hovered ? Theme.text3 : Theme.borderStrong
        border.width: filled ? 0 : 1.5
        color: filled ? (root.enabled ? Theme.accent : Theme.disabled) : root.hovered && root.enabled ? Theme.hover : Theme.surface
        implicitHeight: Theme.dp(18)
        implicitWidth: Theme.dp(18)
        radius: Theme.radiusTag
        y: root.topPadding + Math.round((Theme.dp(22) - height) / 2)

        LMPIcon {
            anchors.centerIn: parent
            color: Theme.onAccent
            name: root.checkState === Qt.Checked ? "check" : ""
            size: 16
        }

        Rectangle {
            anchors.centerIn: parent
            color: Theme.onAccent
            height: Theme.space2
            visible: root.checkState === Qt.PartiallyChecked
            width: Theme.dp(10)
        }

        LMPFocusRing {
            around: parent.radius
            shown: root.visualFocus
        }
    }
}
