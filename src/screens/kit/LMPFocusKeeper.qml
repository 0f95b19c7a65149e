import QtQuick
import QtQuick.Window
import "inputKeys.js" as InputKeys

/// Passes the keyboard on when what has it is hidden. Left to itself it would stay there, with no ring to be seen, and a
/// field would go on taking what is typed. It goes to what is nearest, or, where a click had brought it and no ring would
/// tell where it is now, to nothing that acts. A screen that knows better gives it away itself when it hides the item. One
/// for each window.
Item {
    id: root

    readonly property Item holder: root.Window.activeFocusItem
    /// What had it while it was to be seen.
    property Item seen

    function isIn(item: Item, outer: Item): bool {
        for (let at = item; at; at = at.parent) {
            if (at === outer)
                return true;
        }
        return false;
    }

    /// Whether it went to `heir`, which can take it and is in the same surroundings.
    function goesTo(heir: Item, surroundings: Item, reason: int): bool {
        if (!heir || !heir.visible || !root.isIn(heir, surroundings))
            return false;
        heir.forceActiveFocus(reason);
        return true;
    }

    /// To what has most of its surroundings in common with what is hidden: what follows, or else what is before.
    function passOn(): void {
        const hidden = root.holder;
        if (!hidden || hidden.visible)
            return;
        const reason = InputKeys.reasonOf(hidden);
        if (reason === Qt.MouseFocusReason) {
            hidden.focus = false;
            return;
        }
        const next = hidden.nextItemInFocusChain(true);
        const previous = hidden.nextItemInFocusChain(false);
        for (let at = hidden.parent; at; at = at.parent) {
            if (at.visible && (root.goesTo(next, at, reason) || root.goesTo(previous, at, reason)))
                return;
        }
    }

    onHolderChanged: {
        // The window comes to the front again, and it was hidden behind the others.
        if (root.holder && root.holder === root.seen)
            Qt.callLater(root.passOn); // qmllint disable type
        if (root.holder)
            root.seen = root.holder.visible ? root.holder : null;
    }

    Connections {
        function onVisibleChanged(): void {
            // After the others have heard of it.
            Qt.callLater(root.passOn); // qmllint disable type
        }

        target: root.holder
    }
}
