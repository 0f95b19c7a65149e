import QtQuick
import QtQuick.Templates as T

/// One of several that exclude each other (those of the same parent). The arrows move between them.
T.RadioButton {
    id: root

    property string description
    /// A group is one stop of the Tab key: the one that is chosen, or the first where none is.
    readonly property bool leads: root.leader() === root

    function leader(): Item {
        let first = null;
        for (let i = 0; root.parent && i < root.parent.children.length; ++i) {
            const item = root.parent.children[i];
            if (!(item instanceof T.RadioButton) || !item.visible || !item.enabled)
                continue;
            if (item.checked)
                return item;
            first = first ?? item;
        }
        return first;
    }

    /// The next or the previous one of the same parent, chosen and given the keyboard.
    function step(by: int): void {
        const all = [];
        for (let i = 0; i < root.parent.children.length; ++i) {
            const item = root.parent.children[i];
            if (item instanceof T.RadioButton && item.visible && item.enabled)
                all.push(item);
        }
        const next = all[(all.indexOf(root) + by + all.length) % all.length];
        if (next === root)
            return;
        next.forceActiveFocus(Qt.TabFocusReason);
        next.toggle();
        next.toggled();
        next.clicked();
    }

    Accessible.description: root.enabled ? root.description : "不可用"
    Accessible.name: root.text
    Keys.onDownPressed: root.step(1)
    Keys.onLeftPressed: root.step(-1)
    Keys.onRightPressed: root.step(1)
    Keys.onUpPressed: root.step(-1)
    focusPolicy: root.leads ? Qt.StrongFocus : Qt.ClickFocus
    hoverEnabled: true
    implicitHeight: Math.max(Theme.target, implicitContentHeight + topPadding + bottomPadding)
    implicitWidth: implicitContentWidth
    verticalPadding: Theme.space4

    contentItem: LMPChoiceText {
        active: root.enabled
        description: root.description
        leftPadding: root.indicator.width + Theme.space8
        text: root.text
    }

    indicator: Rectangle {
        border.color: !root.enabled ? Theme.disabled : root.checked ? Theme.accent : root.hovered ? Theme.text3 : Theme.borderStrong
        border.width: root.checked ? 2 : 1.5
        color: root.hovered && root.enabled && !root.checked ? Theme.hover : Theme.surface
        implicitHeight: Theme.dp(18)
        implicitWidth: Theme.dp(18)
        radius: height / 2
        y: root.topPadding + Math.round((Theme.dp(22) - height) / 2)

        Rectangle {
            anchors.centerIn: parent
            color: root.enabled ? Theme.accent : Theme.disabled
            height: width
            radius: width / 2
            visible: root.checked
            width: Theme.dp(8)
        }

        LMPFocusRing {
            around: parent.radius
            shown: root.visualFocus
        }
    }
}
