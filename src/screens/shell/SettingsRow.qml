import QtQuick
import Lumenpair.Kit

/// A part of the settings, to go to. The arrows move along them.
LMPRow {
    id: root

    function step(forward: bool): void {
        const next = root.nextItemInFocusChain(forward) as SettingsRow;
        if (next && next.parent === root.parent)
            next.forceActiveFocus(Qt.TabFocusReason);
    }

    Keys.onDownPressed: root.step(true)
    Keys.onUpPressed: root.step(false)
    width: parent ? parent.width : implicitWidth
}
