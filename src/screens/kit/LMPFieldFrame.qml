import QtQuick

/// The frame around what is typed into: it says whether that can be written to, is wrong, or has the keyboard.
Rectangle {
    id: root

    property bool failed: false
    property bool focused: false
    property bool hovered: false
    /// The keyboard came by keyboard: the ring says it, and the frame stays thin.
    property bool ringed: false
    property bool writable: true
    readonly property bool strong: root.failed || (root.writable && root.focused && !root.ringed)

    function line(): color {
        if (root.failed)
            return Theme.danger;
        if (root.strong)
            return Theme.accent;
        if (!root.enabled)
            return Theme.border;
        if (!root.writable)
            return root.focused && !root.ringed ? Theme.text3 : Theme.border;
        return root.hovered ? Theme.text3 : Theme.borderStrong;
    }

    border.color: root.line()
    border.width: root.strong ? 2 : 1
    color: root.enabled && root.writable ? Theme.surface : Theme.sunken
    radius: Theme.radiusControl

    LMPFocusRing {
        around: root.radius
        shown: root.ringed
    }
}
