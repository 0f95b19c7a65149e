import QtQuick
import Lumenpair.Kit

/// Text of a message that can be selected and copied with the mouse and the keyboard. Up and Down leave it for the next
/// block at its first and last line; Tab goes through its links, Enter opens the one it is at.
TextEdit {
    id: root

    required property int row
    required property MarkdownColumn view
    /// What the focus ring is around.
    property Item frame: root

    /// The link that the keyboard is at: where it begins, or -1.
    property int link: -1
    property QtObject ring
    property QtObject tip
    /// Where the link under the pointer or the keyboard leads.
    readonly property string address: root.hoveredLink !== "" ? root.hoveredLink : root.link >= 0 ? root.view.blocks.linkUrl(root.row, root.link) : ""

    function goToLink(start: int): bool {
        root.link = start;
        if (start < 0)
            return false;
        root.select(start, root.view.blocks.linkEnd(root.row, start));
        return true;
    }

    /// The keyboard comes from above (1) or below (-1).
    function enter(by: int): void {
        root.forceActiveFocus(by > 0 ? Qt.TabFocusReason : Qt.BacktabFocusReason);
        root.cursorPosition = by > 0 ? 0 : root.length;
    }

    function leave(event: KeyEvent, by: int): void {
        const half = root.cursorRectangle.height / 2;
        const last = root.cursorRectangle.y + root.cursorRectangle.height > root.contentHeight - half;
        const edge = by > 0 ? last : root.cursorRectangle.y < half;
        event.accepted = event.modifiers === Qt.NoModifier && edge && root.view.moveFocus(root.row, by);
    }

    function showAddress(x: real, y: real): QtObject {
        return root.view.address.createObject(root, {
            "text": root.address,
            "visible": true,
            "x": x,
            "y": y + Theme.dp(20)
        });
    }

    function open(event: KeyEvent): void {
        event.accepted = root.link >= 0;
        if (event.accepted)
            root.view.linkActivated(root.address);
    }

    Accessible.readOnly: true
    Keys.onBacktabPressed: event => event.accepted = root.link >= 0 && root.goToLink(root.view.blocks.previousLink(root.row, root.link))
    Keys.onDownPressed: event => root.leave(event, 1)
    Keys.onEnterPressed: event => root.open(event)
    Keys.onMenuPressed: menu.open()
    Keys.onReturnPressed: event => root.open(event)
    Keys.onTabPressed: event => event.accepted = root.goToLink(root.view.blocks.nextLink(root.row, root.link))
    Keys.onUpPressed: event => root.leave(event, -1)
    activeFocusOnTab: root.row === root.view.current
    color: Theme.text
    font.family: Theme.fontFamily
    readOnly: true
    selectByKeyboard: true
    selectByMouse: true
    selectedTextColor: Theme.onAccent
    selectionColor: Theme.accent

    onActiveFocusChanged: {
        if (root.ring)
            root.ring.destroy();
        // Where the pointer is, it was a click that brought the keyboard here, and the text is to be read.
        root.ring = root.activeFocus && !pointer.hovered ? root.view.ring.createObject(root.frame, {"shown": true}) : null;
        if (root.activeFocus)
            root.view.current = root.row;
        else
            root.link = -1;
    }
    onAddressChanged: {
        if (root.tip)
            root.tip.destroy();
        root.tip = root.address === "" ? null : root.showAddress(root.hoveredLink !== "" ? pointer.point.position.x : root.cursorRectangle.x, root.hoveredLink !== "" ? pointer.point.position.y : root.cursorRectangle.y);
    }
    onCursorRectangleChanged: {
        if (root.activeFocus && !pointer.hovered)
            root.view.reveal(root, root.cursorRectangle);
    }
    onLinkActivated: link => root.view.linkActivated(link)

    LMPReadingMenu {
        id: menu
    }

    HoverHandler {
        id: pointer

        cursorShape: root.hoveredLink !== "" ? Qt.PointingHandCursor : Qt.IBeamCursor
    }
}
