import QtQuick
import QtQuick.Templates as T
import "popupLayers.js" as PopupLayers

/// A few words about what the pointer rests on or the keyboard is at.
T.ToolTip {
    id: root

    delay: 600
    horizontalPadding: Theme.space8
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: Math.min(Theme.dp(320), implicitContentWidth + leftPadding + rightPadding)
    margins: Theme.space4
    verticalPadding: Theme.space4
    x: root.parent ? Math.round((root.parent.width - root.implicitWidth) / 2) : 0
    y: root.parent ? root.parent.height + Theme.space4 : 0

    background: Rectangle {
        border.color: Theme.borderStrong
        border.width: 1
        color: Theme.surface
        radius: Theme.radiusTag
    }

    contentItem: LMPText {
        kind: LMPText.Caption
        text: root.text
    }

    onAboutToShow: root.z = PopupLayers.layerOf(root.parent, T.Overlay.overlay)
}
