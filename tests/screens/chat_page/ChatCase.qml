import QtQuick
import QtTest
import Lumenpair.Chat

/// A test of the chat's page on a fresh service: typing, and playing the twin.
ScreenCase {
    id: root

    required property Item scene
    property ChatPage page: null
    readonly property Transcript transcript: root.page ? root.page.transcript : null
    readonly property string stream: "/relay/chat/stream"

    function init() {
        stage.restart();
        root.page = createTemporaryObject(pageComponent, root.scene, {
            chat: stage.chat
        });
        stage.chat.begin();
        root.page.focusInput();
    }
    function type(text) {
        root.page.focusInput();
        root.page.composer.text = text;
        keyClick(Qt.Key_Return);
    }
    function pushText(text) {
        stage.push(JSON.stringify({
            delta: text
        }));
    }
    /// A turn whose stream is open, with some of the reply in it.
    function beginTurn(text, reply) {
        stage.answerByStream();
        const before = stage.requests(root.stream);
        root.type(text);
        tryVerify(() => stage.requests(root.stream) > before);
        if (reply) {
            root.pushText(reply);
            root.awaitText(root.page, reply.split("\n")[0]);
        }
    }
    /// Ends the turn, and waits for its save.
    function finishTurn() {
        const saves = stage.saves;
        stage.push(JSON.stringify({
            done: true,
            pipCharged: 3,
            balance: 997,
            requestId: "r1",
            usedMemories: [
                {
                    content: "喜欢清早跑步",
                    truth: "pref"
                }
            ]
        }));
        tryVerify(() => stage.chat.idle);
        tryVerify(() => stage.saves > saves);
    }
    /// Opens a conversation of so many messages, of which the end is in sight.
    function openLong(count) {
        stage.serveLong("long", count);
        stage.chat.load("long");
        tryVerify(() => stage.chat.open && stage.chat.messages.total === count);
        tryVerify(() => root.transcript.contentHeight > root.transcript.height && root.transcript.distanceToEnd === 0);
    }

    Component {
        id: pageComponent

        ChatPage {
            anchors.fill: parent
        }
    }
}
