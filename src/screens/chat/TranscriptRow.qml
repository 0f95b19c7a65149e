import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// The place of one message. What is seen of it is made when the view comes near and given up far away.
MessageItem {
    id: root

    /// Set by who scrolls: whether it is near enough to be made.
    property bool awake: false
    /// Set likewise: whether it is to be made at once, and not when there is time.
    property bool urgent: false
    readonly property bool made: place.item !== null
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

    height: place.item ? Math.ceil(place.implicitHeight) : root.guess()
    width: root.column ? root.column.width : 0

    Component.onCompleted: {
        if (root.streaming)
            root.tellStreaming();
    }
    onHeightChanged: {
        if (place.item) {
            root.knownHeight = root.height;
            root.knownWidth = root.width;
        }
    }
    onStreamingChanged: root.tellStreaming()

    LazyPart {
        id: place

        part: root.column ? (root.own ? root.column.ownMessage : root.column.twinMessage) : null
        subject: root
        urgent: root.urgent
        wanted: root.awake || root.focused
        width: root.width
    }
}
