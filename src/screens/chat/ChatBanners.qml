import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// What is to be known of the whole conversation: that it is incognito, that it is not saved, that a link was refused.
Column {
    id: root

    required property ChatModel chat

    signal serviceCopyWanted

    spacing: Theme.space8
    visible: incognito.visible || notice.visible || link.visible

    LMPBanner {
        id: incognito

        text: root.chat.incognitoText
        visible: root.chat.incognito
    }
    LMPBanner {
        id: notice

        actionText: root.chat.conflicted ? "改用服务上的版本…" : "再试一次"
        closable: true
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
    }
    LMPBanner {
        id: link

        closable: true
        text: root.chat.linkNotice
        tone: LMPBanner.Warning
        visible: root.chat.linkNotice !== ""

        onClosed: root.chat.closeLinkNotice()
    }
}
