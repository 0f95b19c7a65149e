import QtQuick
import Lumenpair.Chat
import Lumenpair.Shell

/// The tab "now": the chat with one's twin.
TabPage {
    id: root

    function focusInput(): void {
        page.focusInput();
    }

    ChatPage {
        id: page

        anchors.fill: parent
        chat: root.scene.chat
        focus: true
        leading: SidebarButton {
            visible: root.frame.sidebarHidden
            onClicked: root.frame.sidebarRequested()
        }

        onConversationWanted: incognito => root.scene.startConversation(incognito)
    }
}
