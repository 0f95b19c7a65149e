import QtQuick
import QtQuick.Templates as T

/// One word of an LMPSegmented, which it finds as the container it stands in. The container has the keyboard, not it.
T.AbstractButton {
    id: root

    required property int index
    readonly property bool chosen: root.row !== null && root.row.currentIndex === root.index
    readonly property T.Container row: root.parent ? root.parent.parent as T.Container : null

    Accessible.checkable: true
    Accessible.checked: root.chosen
    Accessible.description: root.enabled ? "" : "不可用"
    Accessible.name: root.text
    Accessible.role: Accessible.RadioButton
    focusPolicy: Qt.NoFocus
    height: root.row ? root.row.availableHeight : implicitHeight
    hoverEnabled: true
    implicitHeight: Theme.target
    implicitWidth: Math.max(Theme.space40, implicitContentWidth + 2 * Theme.space12)

    background: Rectangle {
        border.color: root.enabled ? Theme.borderStrong : Theme.border
        border.width: root.chosen ? 1 : 0
        color: root.chosen ? Theme.surface : Theme.veil(Theme.text, root.down ? 0.12 : root.hovered && root.enabled ? 0.06 : 0)
        radius: Theme.radiusTag

        LMPFocusRing {
            around: Theme.radiusControl
            shown: root.chosen && root.row.visualFocus
        }
    }

    contentItem: LMPText {
        Accessible.ignored: true
        color: !root.enabled ? Theme.disabled : root.chosen ? Theme.text : Theme.text2
        elide: Text.ElideRight
        font.weight: root.chosen ? Font.DemiBold : Font.Medium
        horizontalAlignment: Text.AlignHCenter
        kind: LMPText.Label
        text: root.text
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.NoWrap
    }
}
