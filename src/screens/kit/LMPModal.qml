import QtQuick
import QtQuick.Templates as T
import "inputKeys.js" as InputKeys
import "popupLayers.js" as PopupLayers

/// What sheets and dialogs share: the middle of the window, a veil over the rest, and the keyboard kept inside while it
/// is open and given back where it was when it closes. Esc is only reported (`escaped`): what it does is for the kind.
T.Popup {
    id: root

    /// What lies over what, from below: `z` is one of these. Within a layer the last to open is in front.
    enum Layer {
        Usual,
        CareCard,
        CarePage,
        Leaving
    }

    /// What a screen reader calls it, and what it reads with that.
    property string accessibleDescription
    property string accessibleName
    /// What had the keyboard before, or asked for it since; null when it went away in the meantime.
    property Item before: null
    /// How it came there: who goes by keys must see where the keyboard is afterwards, too.
    property int beforeReason: Qt.PopupFocusReason
    /// From when it is asked to open until it is asked to close.
    property bool held: false
    /// It is open, and nothing lies over it: the keyboard is in it.
    property bool hasKeyboard: false
    /// Gets the keys that nothing else took, so that long words can be read with the keyboard on a button.
    property Item scroller: null
    /// Tells of screens that take the keyboard, also while the window is not in front, where the popup hears of nothing.
    /// A property, since the engine makes the content item for a child at once. A kind that puts one of its own in its
    /// place would then leave a creation that never ends; what is wrong with a binding is told when none is under way.
    readonly property Connections taking: Connections {
        function onActiveFocusItemChanged(): void {
            Qt.callLater(root.keepKeyboard); // qmllint disable type
        }

        enabled: root.held
        target: root.parent ? root.parent.Window.window : null
    }
    readonly property real windowHeight: root.parent ? root.parent.height : 0
    readonly property real windowWidth: root.parent ? root.parent.width : 0

    signal escaped

    function remember(item: Item): void {
        root.before = item;
        root.beforeReason = InputKeys.reasonOf(item);
    }

    /// Whether a screen behind was given the keyboard while this was on its way out.
    function outrun(): bool {
        const taker = root.parent ? root.parent.Window.activeFocusItem : null;
        return taker !== null && taker !== root.parent.Window.contentItem && !root.isInFront(taker);
    }

    /// Whether `item` is in this or in a popup that lies over it.
    function isInFront(item: Item): bool {
        const popup = PopupLayers.popupOf(item, root.parent);
        if (popup === null)
            return item === root.parent;
        const own = PopupLayers.popupOf(root.contentItem, root.parent);
        return own === null || popup === own || PopupLayers.liesOver(popup, own, root.parent);
    }

    /// Takes the keyboard back from what is behind: what comes up there may ask for it.
    function keepKeyboard(): void {
        const taker = root.held && root.parent ? root.parent.Window.activeFocusItem : null;
        const popup = taker ? PopupLayers.popupOf(taker, root.parent) : null;
        root.hasKeyboard = popup !== null && popup === PopupLayers.popupOf(root.contentItem, root.parent);
        if (!taker || root.isInFront(taker))
            return;
        // What the person was at stays known, whichever popups come and go behind. Two that name each other would lose
        // it.
        const known = root.before !== null && root.before.visible;
        if (taker !== root.parent.Window.contentItem && (popup === null || !known))
            root.remember(taker);
        root.forceActiveFocus(Qt.PopupFocusReason);
    }

    T.Overlay.modal: Rectangle {
        color: Theme.scrim
    }
    closePolicy: T.Popup.NoAutoClose
    dim: true
    focus: true
    margins: Theme.space16
    modal: true
    padding: 0
    parent: T.Overlay.overlay
    x: Math.round((root.windowWidth - root.width) / 2)
    y: Math.round(Math.max(Theme.space16, (root.windowHeight - root.height) / 2))

    background: Rectangle {
        border.color: Theme.borderStrong
        border.width: 1
        color: Theme.surface
        radius: Theme.radiusComposer
    }
    contentItem: FocusScope {
        Accessible.description: root.accessibleDescription
        Accessible.name: root.accessibleName
        Accessible.role: Accessible.Dialog
        Keys.forwardTo: root.scroller ? [root.scroller] : []
        Keys.onEscapePressed: root.escaped()
        focus: true
    }
    enter: Transition {
        NumberAnimation {
            duration: Theme.motion
            easing.type: Easing.OutCubic
            from: 0
            property: "opacity"
            to: 1
        }
    }
    exit: Transition {
        NumberAnimation {
            duration: Theme.motion
            property: "opacity"
            to: 0
        }
    }

    onAboutToHide: root.held = root.hasKeyboard = false
    onAboutToShow: {
        root.held = true;
        // One that is opened again on its way out knows already, unless somebody has taken the keyboard since.
        if (!root.visible || root.outrun())
            root.remember(root.parent ? root.parent.Window.activeFocusItem : null);
    }
    onOpened: root.keepKeyboard()
    onClosed: {
        if (root.before && root.before.visible && !root.outrun())
            root.before.forceActiveFocus(root.beforeReason);
        root.before = null;
    }
}
