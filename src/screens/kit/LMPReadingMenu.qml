import QtQuick

/// What the right button offers on the text it stands in, which is there to be read, and the menu key by way of `open`.
/// The menu is made when it is first asked for.
TapHandler {
    id: root

    readonly property TextEdit read: root.parent as TextEdit
    readonly property Component made: Component {
        LMPTextMenu {
        }
    }
    property LMPTextMenu menu: null

    function options(): LMPTextMenu {
        if (!root.menu)
            root.menu = root.made.createObject(root.read, {
                    "area": root.read
                }) as LMPTextMenu;
        return root.menu;
    }

    /// At the caret, as a key asks for it.
    function open(): void {
        const caret = root.read.cursorRectangle;
        root.options().popup(root.read, caret.x, caret.y + caret.height);
    }

    acceptedButtons: Qt.RightButton
    onTapped: root.options().popup()
}
