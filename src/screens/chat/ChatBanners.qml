import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// What is to be known of the whole conversation: that it is incognito, that it is not saved, that a link was refused.
Column {
    id: root

    required property ChatModel chat

    signal serviceCopyWanted

    readonly property bool any: root.chat.incognito || root.chat.notice !== "" || root.chat.deeds.linkNotice !== ""

    spacing: Theme.space8
    visible: root.any

    LMPBanner {
        text: root.chat.incognitoText
        visible: root.chat.incognito
    }
    LMPBanner {
        // Only what is not saved can be saved again.
        actionText: root.chat.conflicted ? "改用服务上的版本…" : root.chat.localOnly ? "再试一次" : ""
        closable: true
        secondActionText: root.chat.blocked ? "另存为新对话" : ""
        text: root.chat.notice
        tone: LMPBanner.Warning
        visible: root.chat.notice !== ""

        onAction: {
            if (root.chat.conflicted)
                root.serviceCopyWanted();
            else
                root.chat.saveAgain();
        }
        onClosed: root.chat.closeNotice()
        onSecondAction: root.chat.saveAsNew()
    }
    LMPBanner {
        closable: true
        text: root.chat.deeds.linkNotice
        tone: LMPBanner.Warning
        visible: root.chat.deeds.linkNotice !== ""

        onClosed: root.chat.deeds.closeLinkNotice()
    }
}
