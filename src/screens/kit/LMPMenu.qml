import QtQuick
import QtQuick.Templates as T

/// A menu of LMPMenuItem, opened with popup() or at a place of its parent. The keyboard goes back where it was, unless
/// what was chosen has taken it.
T.Menu {
    id: root

    property Item before: null

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

    onAboutToShow: root.before = root.parent ? root.parent.Window.activeFocusItem : null
    onClosed: {
        const window = root.before ? root.before.Window : null;
        if (window && (window.activeFocusItem === null || window.activeFocusItem === window.contentItem))
            root.before.forceActiveFocus(Qt.PopupFocusReason);
        root.before = null;
    }
}
