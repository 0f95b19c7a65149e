import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// Finds a message in any conversation and goes to it.
LMPModal {
    id: root

    required property ConversationSearchModel model
    /// It stays there while the list below the field grows and shrinks.
    readonly property real top: Math.max(Theme.dp(16), Math.round(root.windowHeight * 0.1))

    accessibleName: "在所有对话里查找"
    height: Math.min(implicitContentHeight, root.windowHeight - root.top - Theme.dp(40))
    width: Math.min(Theme.dp(640), root.windowWidth - 2 * Theme.dp(16))
    y: root.top

    contentItem: SearchPanel {
        focus: true
        model: root.model

        onDismissed: root.close()
        onTaken: row => {
            root.close();
            root.model.choose(row);
        }
    }

    onAboutToShow: (root.contentItem as SearchPanel).begin()
}
