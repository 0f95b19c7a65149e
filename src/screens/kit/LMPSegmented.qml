import QtQuick
import QtQuick.Templates as T

/// A few words of which one holds, side by side. One stop for Tab; the arrows choose.
T.Container {
    id: root

    property string label
    property list<string> model

    signal activated(int index)

    function choose(index: int): void {
        if (index < 0 || index >= root.count || index === root.currentIndex)
            return;
        // Not an assignment: what the owner bound `currentIndex` to stays bound.
        root.setCurrentIndex(index);
        root.activated(index);
    }

    function prepare(segment: LMPSegment, index: int): void {
        segment.text = Qt.binding(() => root.model[index]); // qmllint disable type
        segment.clicked.connect(() => root.press(index));
    }

    function press(index: int): void {
        root.forceActiveFocus(Qt.MouseFocusReason);
        root.choose(index);
    }

    Accessible.description: root.enabled ? "" : "不可用"
    Accessible.focusable: true
    Accessible.name: {
        const current = root.currentIndex >= 0 && root.currentIndex < root.model.length ? root.model[root.currentIndex] : "";
        return root.label === "" || current === "" ? root.label + current : root.label + "：" + current;
    }
    Accessible.role: Accessible.PageTabList
    Keys.onDownPressed: root.choose(root.currentIndex + 1)
    Keys.onLeftPressed: root.choose(root.currentIndex - 1)
    Keys.onRightPressed: root.choose(root.currentIndex + 1)
    Keys.onUpPressed: root.choose(root.currentIndex - 1)
    focusPolicy: Qt.StrongFocus
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

    // By their number: a word that changes is no other choice.
    Repeater {
        model: root.model.length

        delegate: LMPSegment {
        }

        onItemAdded: (index, item) => root.prepare(item as LMPSegment, index)
    }
}
