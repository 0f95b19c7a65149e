import QtQuick
import QtQuick.Templates as T

/// A button with words. One Primary on a page or sheet; Danger for what cannot be taken back; Link inside text.
/// While `busy` it keeps its place and its width, says so, and does nothing.
T.AbstractButton {
    id: root

    enum Kind {
        Primary,
        Secondary,
        Quiet,
        Danger,
        Link
    }

    property bool busy: false
    property string iconName
    property int kind: LMPButton.Secondary

    readonly property bool filled: root.kind === LMPButton.Primary || root.kind === LMPButton.Danger
    readonly property color ink: root.inkOf(root.kind, root.enabled)

    function inkOf(kind: int, enabled: bool): color {
        if (!enabled)
            return Theme.disabled;
        switch (kind) {
        case LMPButton.Primary:
        case LMPButton.Danger:
            return Theme.onAccent;
        case LMPButton.Link:
            return Theme.link;
        }
        return Theme.text;
    }

    function fillOf(kind: int, enabled: bool): color {
        if (kind === LMPButton.Primary)
            return enabled ? Theme.accent : Theme.sunken;
        if (kind === LMPButton.Danger)
            return enabled ? Theme.danger : Theme.sunken;
        return kind === LMPButton.Secondary ? Theme.surface : "transparent";
    }

    /// What the pointer adds: a veil on a filled button, a step of grey on the others.
    function veilOf(filled: bool, down: bool, hovered: bool): color {
        if (filled)
            return Theme.veil(Theme.dark ? "#FFFFFF" : "#000000", down ? 0.18 : hovered ? 0.09 : 0);
        return Theme.veil(Theme.text, down ? 0.12 : hovered ? 0.06 : 0);
    }

    /// A button that is hidden keeps the keyboard; nobody means it then.
    function acts(): bool {
        return root.visible && root.enabled && !root.busy;
    }

    function press(event: KeyEvent): void {
        if (!event.isAutoRepeat && root.acts())
            root.clicked();
        event.accepted = true;
    }

    Accessible.description: !root.enabled ? "不可用" : root.busy ? "正在进行" : ""
    Accessible.name: root.text
    Accessible.role: root.kind === LMPButton.Link ? Accessible.Link : Accessible.Button
    Accessible.onPressAction: {
        if (root.acts())
            root.clicked();
    }
    Keys.onEnterPressed: event => root.press(event)
    Keys.onReturnPressed: event => root.press(event)
    Keys.onSpacePressed: event => event.accepted = !root.acts()
    focusPolicy: Qt.StrongFocus
    horizontalPadding: root.kind === LMPButton.Link ? Theme.space4 : Theme.space12
    hoverEnabled: true
    implicitHeight: Math.max(Theme.target, Theme.control)
    implicitWidth: Math.max(root.kind === LMPButton.Link ? 0 : Theme.space56, implicitContentWidth + leftPadding + rightPadding)

    // Takes the clicks that a busy button must not act on, and leaves the button its focus.
    MouseArea {
        anchors.fill: parent
        enabled: root.busy
        visible: root.busy
        z: 1
    }

    background: Rectangle {
        border.color: root.kind !== LMPButton.Secondary ? "transparent" : root.enabled ? Theme.borderStrong : Theme.border
        border.width: root.kind === LMPButton.Secondary ? 1 : 0
        color: root.fillOf(root.kind, root.enabled)
        radius: Theme.radiusControl

        Rectangle {
            anchors.fill: parent
            color: root.veilOf(root.filled, root.down, root.hovered && root.enabled && !root.busy)
            radius: parent.radius
        }

        LMPFocusRing {
            shown: root.visualFocus
        }
    }

    contentItem: LMPButtonContent {
        busy: root.busy
        iconName: root.iconName
        ink: root.ink
        kind: root.kind === LMPButton.Link ? LMPText.Body : LMPText.Label
        text: root.text
        underline: root.kind === LMPButton.Link && (root.hovered || root.visualFocus)
    }
}
