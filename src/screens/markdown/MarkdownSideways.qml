import QtQuick
import QtQuick.Templates as T
import Lumenpair.Kit

/// Room for something wider than the message: scrolls to the side, and follows the text cursor there.
Flickable {
    id: root

    required property MarkdownEdit edit

    /// Shows the place that the keyboard is at.
    function follow(): void {
        const rectangle = root.edit.cursorRectangle;
        if (!root.edit.activeFocus)
            return;
        if (rectangle.x < root.contentX)
            root.contentX = Math.max(0, rectangle.x - Theme.dp(24));
        else if (rectangle.x > root.contentX + root.width)
            root.contentX = Math.min(root.contentWidth - root.width, rectangle.x - root.width + Theme.dp(24));
    }

    boundsBehavior: Flickable.StopAtBounds
    clip: true
    contentHeight: root.edit.height
    contentWidth: root.edit.width
    flickableDirection: Flickable.HorizontalFlick
    // The bar stands under the text, not on it.
    implicitHeight: root.edit.height + (root.contentWidth > root.width ? Theme.dp(12) : 0)
    interactive: root.contentWidth > root.width

    T.ScrollBar.horizontal: LMPScrollBar {
    }

    Connections {
        function onCursorRectangleChanged(): void {
            root.follow();
        }

        target: root.edit
    }
}
