import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// The chat with one's twin: what was said, what is typed, and how things stand between the two.
FocusScope {
    id: root

    required property ChatModel chat
    readonly property alias transcript: transcript
    readonly property alias composer: composer
    /// What a screen reader is told, once, at the end of a reply.
    readonly property alias announced: announcer.words
    /// At the left of the title, as the shell may need.
    property alias leading: page.leading
    /// The conversation that the text in the box is for.
    property string writtenFor

    /// A conversation of its own is wanted, with or without a trace. What is open is not left here: it may have to be
    /// asked for first.
    signal conversationWanted(incognito: bool)

    /// Puts the caret into the input box.
    function focusInput(): void {
        composer.focusText();
    }
    function beginExtraction(): void {
        extraction.open();
    }
    /// What stands under the input box: why it was held back before all else, then what is worth knowing.
    function hint(): string {
        if (root.chat.inputHeldReason !== "")
            return root.chat.inputHeldReason;
        // What went wrong with a message stands under that message.
        if (root.chat.errorText !== "" && !transcript.showsError(root.chat.errorText))
            return root.chat.errorText;
        return root.chat.cheaperMode ? "省着聊已打开，回答会短一些" : "";
    }
    function purse(): string {
        const balance = "余额 " + root.chat.balanceText;
        return root.chat.lastChargeText === "—" ? balance : "上一轮 " + root.chat.lastChargeText + " · " + balance;
    }
    function switchIncognito(incognito: bool): void {
        options.close();
        root.conversationWanted(incognito);
    }
    /// Puts what is typed for the open conversation into the box. A composition is not disturbed.
    function showInput(): void {
        if (root.writtenFor !== root.chat.conversationId) {
            root.writtenFor = root.chat.conversationId;
            composer.renew(root.chat.input);
        } else if (composer.text !== root.chat.input && !composer.inputMethodComposing)
            composer.text = root.chat.input;
    }

    LMPPage {
        id: page

        anchors.fill: parent
        focus: true
        title: root.chat.open ? root.chat.title : "对话"

        actions: LMPText {
            Accessible.name: "花费与余额，" + root.purse()
            color: Theme.text3
            kind: LMPText.Caption
            text: root.purse()
            wrapMode: Text.NoWrap
        }
        banners: [
            PartLoader {
                id: findBar

                file: "ChatFindBar.qml"
                properties: ({
                        find: root.chat.find
                    })
                wanted: root.chat.find.open

                onLoaded: (findBar.item as ChatFindBar).closed.connect(root.focusInput)
            },
            ChatBanners {
                chat: root.chat
                width: parent.width

                onServiceCopyWanted: replacing.open()
            }
        ]

        Transcript {
            id: transcript

            anchors.bottom: foot.top
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            chat: root.chat
            visible: root.chat.open && transcript.count > 0

            onEditRequested: messageId => {
                if (root.chat.restoreMessage(messageId))
                    root.focusInput();
            }
            onEndTaken: root.focusInput()
            onReplyEnded: words => announcer.announce(words)
        }
        EmptyConversation {
            anchors.fill: transcript
            visible: root.chat.open && transcript.count === 0

            onChosen: text => {
                // What is typed already is not the beginning's to replace.
                root.chat.input = root.chat.input.trim() === "" ? text : root.chat.input + "\n" + text;
                root.focusInput();
            }
        }
        LMPBusy {
            anchors.centerIn: transcript
            running: root.chat.loading
            text: "正在打开对话…"
        }
        LMPErrorState {
            anchors.centerIn: transcript
            text: root.chat.loadError
            visible: root.chat.loadError !== "" && !root.chat.loading

            onAction: root.chat.reload()
        }
        Item {
            id: foot

            anchors.bottom: parent.bottom
            anchors.horizontalCenter: parent.horizontalCenter
            height: composer.height + Theme.space12 + (speechBar.visible ? speechBar.height + Theme.space8 : 0)
            width: transcript.columnWidth

            PartLoader {
                id: speechBar

                file: "SpeechBar.qml"
                properties: ({
                        speech: root.chat.speech
                    })
                wanted: root.chat.speech.shown
            }
            LMPComposer {
                id: composer

                anchors.bottom: parent.bottom
                anchors.bottomMargin: Theme.space12

                attachmentsArea: Column {
                    spacing: Theme.space4
                    width: composer.width - 2 * Theme.space8

                    InputNotice {
                        chat: root.chat
                        width: parent.width
                    }
                    PartLoader {
                        id: conflict

                        file: "InputConflict.qml"
                        properties: ({
                                chat: root.chat
                            })
                        wanted: root.chat.inputs.inputDraftConflicted || root.chat.inputs.givenUp

                        onLoaded: (conflict.item as InputConflict).chosen.connect(root.focusInput)
                    }
                    PartLoader {
                        file: "RetryTarget.qml"
                        properties: ({
                                chat: root.chat
                            })
                        wanted: root.chat.retryTarget !== ""
                    }
                }
                busy: root.chat.sending
                canSend: root.chat.canSend
                enabled: root.chat.open
                focus: true
                height: implicitHeight
                hint: root.hint()
                placeholderText: root.chat.incognito ? "无痕地说点什么" : "说点什么"
                tools: [
                    LMPIconButton {
                        iconName: "settings"
                        text: "对话方式"

                        onClicked: options.open()
                    },
                    LMPIconButton {
                        iconName: "memory"
                        text: "整理记忆"

                        onClicked: root.beginExtraction()
                    }
                ]
                width: parent.width

                // An item that is disabled loses its place in the focus, and does not get it back by itself.
                onEnabledChanged: {
                    if (composer.enabled)
                        composer.focus = true;
                }
                onIdleKey: key => transcript.takeKey(key, Qt.NoModifier)
                onEdited: root.chat.input = composer.text
                onInputMethodComposingChanged: root.showInput()
                onStopRequested: root.chat.stop()
                onSubmitted: root.chat.send()
            }
        }
        LMPAnnouncer {
            id: announcer
        }
    }
    Connections {
        function onFocusAsked() {
            (findBar.item as ChatFindBar).begin();
        }

        target: root.chat.find
    }
    Connections {
        function onConversationChanged() {
            root.showInput();
        }
        function onInputChanged() {
            root.showInput();
        }
        function onLeaving() {
            composer.commit();
        }
        function onSent() {
            transcript.hold();
        }

        target: root.chat
    }
    Component.onCompleted: root.showInput()

    SheetLoader {
        id: options

        chat: root.chat
        file: "ChatOptionsSheet.qml"

        onLoaded: (options.item as ChatOptionsSheet).incognitoWanted.connect(root.switchIncognito)
    }
    SheetLoader {
        chat: root.chat
        file: "UsedMemoriesSheet.qml"
        wanted: root.chat.deeds.usedOpen
    }
    SheetLoader {
        id: extraction

        chat: root.chat
        file: "ExtractionSheet.qml"
    }
    SheetLoader {
        chat: root.chat
        file: "ExtractedCandidatesSheet.qml"
        wanted: root.chat.extraction.open
    }
    SheetLoader {
        chat: root.chat
        file: "FeedbackReasonsSheet.qml"
        wanted: root.chat.deeds.reasonsOpenFor !== ""
    }
    SheetLoader {
        id: replacing

        chat: root.chat
        file: "ServiceCopyDialog.qml"
    }
}
