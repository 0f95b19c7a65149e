import QtQuick
import QtTest

/// What the tests of a screen share: looking for what a person would see.
TestCase {
    id: root

    when: windowShown

    /// The visible items below `item` for which `matches` holds, in the order in which they are drawn.
    function all(item, matches, found = []) {
        if (!item.visible)
            return found;
        if (matches(item))
            found.push(item);
        for (const child of item.children)
            root.all(child, matches, found);
        return found;
    }
    /// Whether `text` can be read somewhere in `item`.
    function reads(item, text) {
        return root.all(item, one => one.text !== undefined && String(one.text).includes(text)).length > 0;
    }
    /// The button of this name in `item`, or null.
    function button(item, name) {
        return root.all(item, one => one.text === name && one.clicked !== undefined)[0] ?? null;
    }
    function press(item, name) {
        tryVerify(() => root.button(item, name) !== null, 5000, "no button " + name);
        root.button(item, name).clicked();
    }
}
