import QtQuick
import Lumenpair.Chat
import Lumenpair.Shell

/// The conversations, below the tab "now".
SidebarList {
    id: root

    function focusFind(): void {
        list.focusFind();
    }

    ConversationList {
        id: list

        anchors.fill: parent
        conversations: root.scene.conversations
        focus: true
        onNewRequested: root.scene.startConversation()
        onOpened: id => {
            root.scene.openConversation(id);
            root.chosen();
        }
    }
}
