import QtQuick
import QtQuick.Templates as T

/// A column that scrolls: its children stand below each other, each as wide as it says (`width: parent.width`).
/// What gets the keyboard is brought into view; the page keys and the arrows scroll.
Flickable {
    id: root

    default property alias content: column.data
    property real bottomPadding: 0
    property real horizontalPadding: 0
    property alias spacing: column.spacing
    property real topPadding: 0

    /// Scrolls as little as is needed for `item`, one of those inside, to be seen.
    function show(item: Item): void {
        const top = item.mapToItem(root.contentItem, 0, 0).y - Theme.space8;
        const bottom = top + item.height + 2 * Theme.space8;
        if (top < root.contentY)
            root.contentY = Math.max(0, top);
        else if (bottom > root.contentY + root.height)
            root.contentY = Math.max(0, Math.min(top, bottom - root.height, root.contentHeight - root.height));
    }

    function wayOf(key: int): real {
        switch (key) {
        case Qt.Key_PageDown:
            return 0.9 * root.height;
        case Qt.Key_PageUp:
            return -0.9 * root.height;
        case Qt.Key_Down:
            return Theme.space40;
        case Qt.Key_Up:
            return -Theme.space40;
        }
        return 0;
    }

    function scrollBy(pixels: real): void {
        root.contentY = Math.max(0, Math.min(root.contentY + pixels, root.contentHeight - root.height));
    }

    function holds(item: Item): bool {
        for (let at = item; at; at = at.parent) {
            if (at === root.contentItem)
                return true;
        }
        return false;
    }

    Keys.onPressed: event => {
        const way = root.wayOf(event.key);
        if (way === 0 || root.contentHeight <= root.height)
            return;
        root.scrollBy(way);
        event.accepted = true;
    }
    T.ScrollBar.vertical: LMPScrollBar {
    }
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    contentHeight: column.implicitHeight + root.topPadding + root.bottomPadding
    contentWidth: width
    implicitHeight: contentHeight
    implicitWidth: column.implicitWidth + 2 * root.horizontalPadding

    Column {
        id: column

        width: root.width - 2 * root.horizontalPadding
        x: root.horizontalPadding
        y: root.topPadding
    }

    Connections {
        function onActiveFocusItemChanged() {
            const item = root.Window.activeFocusItem;
            if (item && root.holds(item))
                root.show(item);
        }

        target: root.Window.window
    }
}
