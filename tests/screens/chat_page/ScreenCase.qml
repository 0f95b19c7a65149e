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
        for (let i = 0; i < item.children.length; ++i)
            root.all(item.children[i], matches, found);
        return found;
    }
    function plain(text) {
        return String(text).replace(/<style[^]*?<\/style>|<[^>]*>/g, "").trim();
    }
    /// Whether `text` can be read somewhere in `item`.
    function reads(item, text) {
        return root.all(item, one => one.font !== undefined && root.plain(one.text).includes(text)).length > 0;
    }
    function awaitText(item, text) {
        for (let turn = 0; turn < 500 && !root.reads(item, text); ++turn)
            wait(10);
        verify(root.reads(item, text), text + " is not in: " + root.words(item));
    }
    /// The button of this name in `item`, or null.
    function button(item, name) {
        return root.all(item, one => one.text === name && one.clicked !== undefined)[0] ?? null;
    }
    /// All that can be read in `item`, for the message of a test that fails.
    function words(item) {
        return root.all(item, one => one.font !== undefined && one.text).map(one => root.plain(one.text)).join(" | ");
    }
    function press(item, name) {
        tryVerify(() => root.button(item, name) !== null, 5000, "no button " + name);
        root.button(item, name).clicked();
    }
}
