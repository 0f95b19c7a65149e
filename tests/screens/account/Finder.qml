import QtQuick

/// Finds what a person sees and uses, by its words.
QtObject {
    id: root

    required property Item within

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

    function top(): Item {
        return root.within.Window.window.contentItem;
    }

    /// A control with `text`, ready to be clicked.
    function control(text: string): Item {
        return root.search(root.top(), item => item.text === text && item.clicked !== undefined);
    }

    /// A field below `label`.
    function field(label: string): Item {
        return root.search(root.top(), item => item.label === label && item.textEdited !== undefined);
    }

    function shows(text: string): bool {
        return root.search(root.top(), item => item.text === text && item.lineHeight !== undefined && item.width > 0) !== null;
    }

    function focused(): Item {
        return root.within.Window.window.activeFocusItem;
    }
}
