import QtQuick
import QtQuick.Templates as T

/// A menu of LMPMenuItem, opened with popup() or at a place of its parent.
T.Menu {
    id: root

    cascade: true
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    implicitWidth: Math.max(Theme.dp(160), implicitContentWidth + leftPadding + rightPadding)
    margins: Theme.space8
    overlap: 1
    padding: Theme.space4

    background: Rectangle {
        border.color: Theme.borderStrong
        border.width: 1
        color: Theme.surface
        radius: Theme.radiusRow
    }

    contentItem: ListView {
        clip: true
        currentIndex: root.currentIndex
        implicitHeight: contentHeight
        implicitWidth: {
            let widest = 0;
            for (let i = 0; i < root.count; ++i)
                widest = Math.max(widest, root.itemAt(i).implicitWidth);
            return widest;
        }
        interactive: contentHeight > height
        model: root.contentModel

        T.ScrollBar.vertical: LMPScrollBar {
        }
    }

    delegate: LMPMenuItem {
    }
}
