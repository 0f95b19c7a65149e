import QtQuick
import QtTest
import Lumenpair.Kit

/// A test of one screen in a window of the least size: finds what a person sees and uses by its words, and uses it.
TestCase {
    id: root

    function search(item: Item, match: var): Item {
        if (!item || !item.visible)
            return null;
        // What is drawn last is in front.
        for (let i = item.children.length - 1; i >= 0; --i) {
            const found = root.search(item.children[i], match);
            if (found)
                return found;
        }
        return match(item) ? item : null;
    }

    function inWindow(match: var): Item {
        return root.search(root.Window.window.contentItem, match);
    }

    /// The control with `text`, or null.
    function control(text: string): Item {
        return root.inWindow(item => item.text === text && item.clicked !== undefined);
    }

    /// The field below `label`, or null.
    function field(label: string): Item {
        return root.inWindow(item => item.label === label && item.textEdited !== undefined);
    }

    function shows(text: string): bool {
        return root.inWindow(item => item.text === text && item.lineHeight !== undefined && item.width > 0) !== null;
    }

    function press(text: string): void {
        tryVerify(() => root.control(text) !== null, 5000, "no control: " + text);
        root.use(root.control(text));
    }

    /// With the keyboard: what a mouse hits may still be moving.
    function use(item: Item): void {
        verify(item.enabled, "cannot be used: " + item.text);
        item.forceActiveFocus();
        verify(item.activeFocus, "no keyboard: " + item.text);
        keyClick(Qt.Key_Return);
    }

    function type(label: string, text: string): void {
        const item = root.field(label);
        verify(item, "no field: " + label);
        item.forceActiveFocus();
        verify(item.activeFocus, "no keyboard: " + label);
        for (const key of text)
            keyClick(key);
    }

    function awaitText(text: string): void {
        tryVerify(() => root.shows(text), 5000, "not shown: " + text);
    }

    /// Whether the keyboard is at `item` or inside it.
    function hasKeyboard(item: Item): bool {
        for (let at = root.Window.window.activeFocusItem; at; at = at.parent) {
            if (at === item)
                return true;
        }
        return false;
    }

    height: 600
    visible: true
    when: windowShown
    width: 920

    // As every window has one.
    LMPFocusKeeper {
    }
}
