import QtQuick
import QtQuick.Templates as T

/// A few words of which one holds, side by side. One stop for Tab; the arrows choose.
T.Container {
    id: root

    property string label
    property list<string> model

    signal activated(int index)

    function choose(index: int, byKey: bool): void {
        if (index < 0 || index >= root.count)
            return;
        const changed = index !== root.currentIndex;
        // Not an assignment: what the owner bound `currentIndex` to stays bound.
        root.setCurrentIndex(index);
        if (byKey)
            root.itemAt(index).forceActiveFocus(Qt.TabFocusReason);
        if (changed)
            root.activated(index);
    }

    Accessible.name: root.label
    Accessible.role: Accessible.PageTabList
    Keys.onDownPressed: root.choose(root.currentIndex + 1, true)
    Keys.onLeftPressed: root.choose(root.currentIndex - 1, true)
    Keys.onRightPressed: root.choose(root.currentIndex + 1, true)
    Keys.onUpPressed: root.choose(root.currentIndex - 1, true)
    implicitHeight: Math.max(Theme.target, Theme.control)
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    padding: Theme.space2

    background: Rectangle {
        border.color: root.enabled ? Theme.borderStrong : Theme.border
        border.width: 1
        color: Theme.sunken
        radius: Theme.radiusControl
    }

    contentItem: Row {
        Repeater {
            model: root.contentModel
        }
    }

    Repeater {
        model: root.model

        delegate: LMPSegment {
        }

        onItemAdded: (index, item) => (item as LMPSegment).clicked.connect(() => root.choose(index, false))
    }
}
