import QtQuick
import QtQuick.Templates as T
import "inputKeys.js" as InputKeys
import "popupLayers.js" as PopupLayers

/// A menu of LMPMenuItem, opened with popup() or at a place of its parent. The keyboard goes back where it was, unless
/// what was chosen has taken it.
T.Menu {
    id: root

    property Item before: null
    /// How it came there: who goes by keys must see where the keyboard is afterwards, too.
    property int beforeReason: Qt.PopupFocusReason

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

    Component.onDestruction: PopupLayers.leaveMenu(root)
    onAboutToShow: {
        root.z = PopupLayers.layerOf(root.parent, T.Overlay.overlay);
        PopupLayers.enterMenu(root, T.Overlay.overlay);
        root.before = root.parent ? root.parent.Window.activeFocusItem : null;
        root.beforeReason = InputKeys.reasonOf(root.before);
    }
    onClosed: {
        PopupLayers.leaveMenu(root);
        const window = root.before ? root.before.Window : null;
        if (window && [null, window.contentItem, root.before].includes(window.activeFocusItem))
            root.before.forceActiveFocus(root.beforeReason);
        root.before = null;
    }
}
