import QtQuick
import Lumenpair.Kit

/// The place of one message. What is seen of it is made when the view comes near and given up far away.
MessageItem {
    id: root

    /// Set by who scrolls: whether it is near enough to be made.
    property bool awake: false
    readonly property bool made: root.awake || root.focused
    readonly property Item content: loader.item as Item
    property real knownHeight: 0
    property real knownWidth: 0

    /// The height it had, or may have, while it is not made.
    function guess(): real {
        if (root.knownHeight > 0)
            return Math.round(root.knownHeight * (root.own ? 1 : root.knownWidth / Math.max(1, root.width)));
        const letters = Math.max(8, root.width * (root.own ? 0.7 : 1) / Theme.dp(15));
        return Theme.dp(80) + Theme.dp(25) * Math.ceil(root.text.length / letters);
    }
    function tellStreaming(): void {
        if (root.column)
            root.column.streamingChanged(root);
    }

    height: root.content ? Math.ceil(root.content.implicitHeight) : root.guess()
    width: root.column ? root.column.width : 0

    Component.onCompleted: {
        if (root.streaming)
            root.tellStreaming();
    }
    onHeightChanged: {
        if (root.content) {
            root.knownHeight = root.height;
            root.knownWidth = root.width;
        }
        if (root.streaming)
            root.column.grew();
    }
    onMadeChanged: {
        // A loader keeps what it hands over for one time only.
        if (root.made)
            loader.setSource(root.own ? "OwnMessage.qml" : "TwinMessage.qml", {
                row: root
            });
        else
            loader.source = "";
    }
    onStreamingChanged: root.tellStreaming()

    Loader {
        id: loader

        asynchronous: !root.seen
        width: root.width
    }
}
