import QtQuick
import Lumenpair.Kit

/// The place of one message. What is seen of it is made when the view comes near and given up far away.
MessageItem {
    id: root

    /// Set by who scrolls: whether it is near enough to be made.
    property bool awake: false
    property real knownHeight: 0
    property real knownWidth: 0
    readonly property Component ownForm: OwnMessage {
        row: root
    }
    readonly property Component twinForm: TwinMessage {
        row: root
    }

    /// A reply in this row has become higher.
    signal grew

    /// The height it had, or may have, while it is not made.
    function guess(): real {
        if (root.knownHeight > 0)
            return Math.round(root.knownHeight * (root.own ? 1 : root.knownWidth / Math.max(1, root.width)));
        const letters = Math.max(8, root.width * (root.own ? 0.7 : 1) / Theme.dp(15));
        return Theme.dp(80) + Theme.dp(25) * Math.ceil(root.text.length / letters);
    }

    height: loader.item ? Math.ceil((loader.item as Item).implicitHeight) : root.guess()

    onHeightChanged: {
        if (loader.item) {
            root.knownHeight = root.height;
            root.knownWidth = root.width;
        }
        if (root.streaming)
            root.grew();
    }

    Loader {
        id: loader

        active: root.awake || root.focused
        asynchronous: !root.seen
        sourceComponent: root.own ? root.ownForm : root.twinForm
        width: root.width
    }
}
