import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The guest trial as a small chat. Leaving it keeps what was said until somebody signs in.
LMPPage {
    id: root

    required property GuestModel guest
    required property CrisisResourcesModel resources
    /// Rounds from before this page came up.
    readonly property int known: root.guest.turns.rowCount()

    signal closed
    signal crisisRequested
    signal registerRequested

    Component.onCompleted: {
        root.guest.start();
        composer.focusText();
    }
    subtitle: root.guest.roundsText
    title: "试聊"

    actions: [
        LMPButton {
            iconName: "care"
            kind: LMPButton.Quiet
            text: root.resources.entry
            onClicked: root.crisisRequested()
        },
        LMPButton {
            text: "注册"
            onClicked: root.registerRequested()
        }
    ]
    leading: LMPIconButton {
        iconName: "chevron-left"
        text: "返回登录"
        onClicked: root.closed()
    }

    LMPScrollView {
        id: list

        readonly property real column: Math.min(Theme.dp(760), root.width - 2 * Theme.space24)

        anchors.bottom: foot.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        bottomPadding: Theme.space16
        horizontalPadding: Math.round((root.width - list.column) / 2)
        spacing: Theme.space16
        topPadding: Theme.space16
        onContentHeightChanged: list.contentY = Math.max(0, list.contentHeight - list.height)

        LMPText {
            color: Theme.text2
            text: root.guest.note
            visible: root.guest.note !== ""
            width: parent.width
        }

        Repeater {
            model: root.guest.turns

            delegate: GuestRound {
                width: parent ? parent.width : 0
            }

            onItemAdded: (index, item) => {
                if (index >= root.known)
                    announcer.announce((item as GuestRound).reply);
            }
        }

        GuestBubble {
            text: root.guest.pending
            visible: root.guest.pending !== ""
            width: parent.width
        }

        LMPBusy {
            running: root.guest.sending
            text: "正在回复……"
        }
    }

    LMPAnnouncer {
        id: announcer
    }

    LMPBusy {
        anchors.centerIn: list
        running: root.guest.opening
        text: "正在打开试聊……"
    }

    LMPErrorState {
        anchors.centerIn: list
        text: root.guest.message
        visible: !root.guest.open && !root.guest.opening && root.guest.message !== ""
        onAction: root.guest.start()
    }

    Column {
        id: foot

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.space16
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: Theme.space8
        width: list.column

        LMPBanner {
            text: root.guest.message
            tone: LMPBanner.Danger
            visible: root.guest.open && root.guest.message !== ""
        }

        LMPBanner {
            id: ended

            actionText: "注册"
            text: root.guest.exhaustedText
            visible: root.guest.exhausted
            onAction: root.registerRequested()
        }

        LMPComposer {
            id: composer

            canSend: root.guest.canSend
            enabled: root.guest.open
            focus: true
            hint: "Enter 发送，Shift+Enter 换行"
            placeholderText: "说点什么"
            readOnly: root.guest.sending
            text: root.guest.input
            visible: !root.guest.exhausted
            width: parent.width
            onEdited: root.guest.input = composer.text
            onEnabledChanged: {
                if (composer.enabled)
                    composer.focusText();
            }
            onSubmitted: root.guest.send()
        }
    }
}
