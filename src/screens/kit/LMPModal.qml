import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit
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
    /// It is open, and nothing that is open lies over it. It alone keeps the keyboard.
    property bool inFront: false
    /// It was, until it was asked to close.
    property bool wasInFront: false
    /// Gets the keys that nothing else took, so that long words can be read with the keyboard on a button.
    property Item scroller: null
    /// Tells of screens that take the keyboard, also while the window is not in front, where the popup hears of nothing.
    /// A property, since the engine makes the content item for a child at once. A kind that puts one of its own in its
    /// place would then leave a creation that never ends; what is wrong with a binding is told when none is under way.
    readonly property Connections taking: Connections {
        function onActiveFocusItemChanged(): void {
            Qt.callLater(root.keepKeyboard); // qmllint disable type
        }

        enabled: root.inFront
        target: root.parent ? root.parent.Window.window : null
    }
    readonly property real windowHeight: root.parent ? root.parent.height : 0
    readonly property real windowWidth: root.parent ? root.parent.width : 0

    signal escaped

    function knowsBefore(): bool {
        return root.before !== null && root.before.visible;
    }

    /// Where the person was. An item of another popup counts only while nothing else is known: two that name each other
    /// would lose the rest.
    function remember(item: Item, reason: int): void {
        const popup = item ? PopupLayers.popupOf(item, root.parent) : null;
        if (!item || (popup !== null && (root.knowsBefore() || root.owns(item))))
            return;
        root.before = item;
        root.beforeReason = reason;
    }

    /// Whether `item` is in this, or in a list or menu over it.
    function owns(item: Item): bool {
        const popup = PopupLayers.popupOf(item, root.parent);
        const own = PopupLayers.popupOf(root.contentItem, root.parent);
        return popup !== null && own !== null && (popup === own || PopupLayers.liesOver(popup, own, root.parent));
    }

    /// Takes the keyboard back from what is behind: what comes up there may ask for it.
    function keepKeyboard(): void {
        if (!root.inFront)
            return;
        const taker = LMPKeyboard.holder(root.parent);
        if (taker && root.owns(taker))
            return;
        root.remember(taker, InputKeys.reasonOf(taker));
        root.forceActiveFocus(Qt.PopupFocusReason);
    }

    /// Gives the keyboard back, unless somebody else has been given it by now.
    function giveBack(): void {
        const next = PopupLayers.front(root.parent);
        if (next)
            next.remember(root.before, root.beforeReason);
        const taker = LMPKeyboard.holder(root.parent);
        const taken = taker !== null && taker.visible && PopupLayers.popupOf(taker, root.parent) === null;
        if (root.knowsBefore() && (next ? root.wasInFront && next.owns(root.before) : !taken))
            root.before.forceActiveFocus(root.beforeReason);
        else if (next)
            next.keepKeyboard();
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

    Component.onDestruction: PopupLayers.leave(root)
    onAboutToHide: {
        root.wasInFront = root.inFront;
        root.held = false;
        PopupLayers.settle(root.parent);
    }
    onAboutToShow: {
        if (!root.visible)
            root.before = null;
        PopupLayers.closeMenus(root);
        const holder = LMPKeyboard.holder(root.parent);
        root.remember(holder, InputKeys.reasonOf(holder));
        root.held = true;
        PopupLayers.enter(root);
    }
    onClosed: {
        PopupLayers.leave(root);
        root.giveBack();
        root.before = null;
    }
    onInFrontChanged: Qt.callLater(root.keepKeyboard) // qmllint disable type
    onZChanged: {
        if (root.held)
            PopupLayers.settle(root.parent);
    }
}
