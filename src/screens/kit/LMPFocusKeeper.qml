import QtQuick
import QtQuick.Window
import "inputKeys.js" as InputKeys

/// Passes the keyboard on when what has it is hidden. Left to itself it would stay there, with no ring to be seen, and a
/// field would go on taking what is typed. It goes to what is nearest; a screen that knows better gives it away itself
/// when it hides the item. One for each window.
Item {
    id: root

    readonly property Item holder: root.Window.activeFocusItem

    function isIn(item: Item, outer: Item): bool {
        for (let at = item; at; at = at.parent) {
            if (at === outer)
                return true;
        }
        return false;
    }

    /// What can take it and has most of its surroundings in common with `hidden`: what follows, or else what is before.
    function nearest(hidden: Item): Item {
        const near = [hidden.nextItemInFocusChain(true), hidden.nextItemInFocusChain(false)];
        for (let at = hidden.parent; at; at = at.parent) {
            const found = at.visible ? near.find(item => item && item.visible && root.isIn(item, at)) : undefined;
            if (found)
                return found;
        }
        return null;
    }

    function passOn(): void {
        const hidden = root.holder;
        const heir = hidden && !hidden.visible ? root.nearest(hidden) : null;
        if (heir)
            heir.forceActiveFocus(InputKeys.reasonOf(hidden));
    }

    Connections {
        function onVisibleChanged(): void {
            // After the others have heard of it.
            Qt.callLater(root.passOn); // qmllint disable type
        }

        target: root.holder
    }
}
