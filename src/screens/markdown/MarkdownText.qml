import QtQuick
import Lumenpair.Kit
import Lumenpair.Markdown

/// A paragraph, heading or list item that can be selected with the mouse and the keyboard.
TextEdit {
    id: root

    required property MarkdownBlockItem block
    readonly property MarkdownColumn view: root.block.view
    readonly property int row: root.block.index
    /// 1 to 6 for a heading, else 0.
    readonly property int level: root.block.kind === MarkdownBlockModel.Heading ? root.block.level : 0

    readonly property int line: [25, 32, 26, 24, 22, 22, 22][root.level]
    /// The link that the keyboard is at: where it begins, or -1.
    property int link: -1
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
        event.accepted = event.modifiers === Qt.NoModifier && (by > 0 ? root.atLastLine() : root.atFirstLine());
        if (event.accepted)
            root.view.leaving(root.row, by);
    }

    function atFirstLine(): bool {
        return root.cursorRectangle.y < Theme.dp(root.line) / 2;
    }

    function atLastLine(): bool {
        return root.cursorRectangle.y + root.cursorRectangle.height > root.contentHeight - Theme.dp(root.line) / 2;
    }

    Keys.onDownPressed: event => root.leave(event, 1)
    Keys.onUpPressed: event => root.leave(event, -1)
    Keys.onTabPressed: event => event.accepted = root.goToLink(root.view.blocks.nextLink(root.row, root.link))
    Keys.onBacktabPressed: event => event.accepted = root.link >= 0 && root.goToLink(root.view.blocks.previousLink(root.row, root.link))
    Keys.onReturnPressed: event => {
        event.accepted = root.link >= 0;
        if (event.accepted)
            root.view.linkActivated(root.address);
    }

    Accessible.readOnly: true
    Accessible.role: root.level > 0 ? Accessible.Heading : Accessible.StaticText
    activeFocusOnTab: root.row === root.view.current
    color: Theme.text
    font.family: Theme.fontFamily
    font.pixelSize: Theme.sp([15, 22, 17, 15, 14, 14, 14][root.level])
    font.weight: root.level > 0 ? Font.DemiBold : Font.Normal
    readOnly: true
    selectByKeyboard: true
    selectByMouse: true
    selectedTextColor: Theme.onAccent
    selectionColor: Theme.accent
    text: root.view.style + "<p style=\"line-height:" + Theme.dp(root.line) + "px;-qt-line-height-type:fixed\">" + root.block.text + "</p>"
    textFormat: TextEdit.RichText
    width: root.block.width - x
    wrapMode: TextEdit.Wrap
    x: Theme.dp(root.block.indent)
    y: Theme.dp(root.block.space)

    onAddressChanged: {
        if (root.tip)
            root.tip.destroy();
        root.tip = root.address === "" ? null : root.view.address.createObject(root, {"text": root.address, "visible": true});
    }
    onActiveFocusChanged: {
        if (root.activeFocus)
            root.view.current = root.row;
        else
            root.link = -1;
    }
    onLinkActivated: link => root.view.linkActivated(link)

    HoverHandler {
        cursorShape: root.hoveredLink !== "" ? Qt.PointingHandCursor : Qt.IBeamCursor
    }
}
