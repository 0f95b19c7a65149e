import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// Goes to a conversation, a page or a command by a few letters of its name.
LMPModal {
    id: root

    required property QuickSwitcherModel model
    /// It stays there while the list below the field grows and shrinks.
    readonly property real top: Math.max(Theme.dp(16), Math.round(root.windowHeight * 0.14))

    accessibleName: "快速切换"
    height: Math.min(implicitContentHeight, root.windowHeight - root.top - Theme.dp(40))
    width: Math.min(Theme.dp(560), root.windowWidth - 2 * Theme.dp(16))
    // Who has chosen goes on typing at once.
    exit: null
    y: root.top

    contentItem: SwitcherPanel {
        focus: true
        model: root.model
        onDismissed: root.close()
        onTaken: row => {
            root.close();
            root.model.choose(row);
        }
    }

    onAboutToHide: root.model.close()
    onAboutToShow: (root.contentItem as SwitcherPanel).begin()
}
