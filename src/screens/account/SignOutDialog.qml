import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// Asks before signing out, and says what that does.
LMPDialog {
    id: root

    required property SessionModel session

    buttons: ["退出登录", "取消"]
    dangerIndex: 0
    escapeIndex: 1
    text: root.session.signOutText
    title: "退出登录？"

    onChosen: index => {
        if (index === 0)
            root.session.signOut();
    }
}
