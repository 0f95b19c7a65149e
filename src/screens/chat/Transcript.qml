import QtQuick
import QtQuick.Templates as T
import QtQuick.Window
import Lumenpair.Chat
import Lumenpair.Kit

/// The messages of the open conversation, and where in them one reads.
///
/// Each message has its place in the column, a box of a remembered or guessed height that is filled when the view comes
/// near: a conversation opens in the time of what is in sight, and where one looks nothing is guessed, but for
/// a moment while the view moves faster than messages can be made.
FocusScope {
    id: root

    required property ChatModel chat
    readonly property MessageListModel messages: root.chat.messages
    readonly property int count: rows.count
    /// The column of the messages.
    readonly property real columnWidth: Math.min(Theme.dp(760), root.width - 2 * root.margin)
    readonly property real margin: Theme.dp(root.width < Theme.dp(600) ? 12 : 24)

    readonly property alias following: scroll.following
    readonly property alias newBelow: scroll.newBelow
    readonly property alias moving: flick.moving
    readonly property alias contentY: flick.contentY
    readonly property alias contentHeight: flick.contentHeight
    readonly property real distanceToEnd: scroll.lowest - flick.contentY
    /// Whether any of the last message is in sight.
    property bool endSeen: true
    /// The row that has the focus somewhere within.
    property TranscriptRow focusedRow: null
    /// The row that was gone to last.
    property TranscriptRow shownRow: null
    readonly property Item focusItem: Window.activeFocusItem
    /// The row of the reply that grows, or of the last that did.
    property TranscriptRow growingRow: null
    readonly property bool replyGrows: root.growingRow !== null && root.growingRow.streaming

    signal editRequested(string messageId)
    /// Somebody asked for the end with the button, which is gone with that.
    signal endTaken
    /// A reply that grew is complete, or as complete as it will be.
    signal replyEnded(string words)

    /// Goes to the end and holds on to it.
    function hold() {
        if (!root.messages.atEnd)
            root.messages.jumpToLatest();
        scroll.hold();
    }
    /// Brings a message into sight, and in a long one the match.
    function show(messageId: string): void {
        const row = rows.itemAt(root.messages.bringIn(messageId)) as TranscriptRow;
        if (!row)
            return;
        root.shownRow = row;
        scroll.show(row, Theme.dp(48));
        arrived.restart();
    }
    /// Whether `text` stands in sight, under the last message.
    function showsError(text: string): bool {
        const last = rows.itemAt(rows.count - 1) as TranscriptRow;
        return last !== null && root.endSeen && last.errorText === text;
    }
    /// Scrolls as the key says. @return whether it is a key that scrolls
    function takeKey(key: int, modifiers: int): bool {
        if (modifiers & ~Qt.KeypadModifier)
            return false;
        const page = Math.max(Theme.dp(50), flick.height - Theme.dp(50));
        switch (key) {
        case Qt.Key_Up:
            scroll.moveBy(-Theme.dp(50));
            return true;
        case Qt.Key_Down:
            scroll.moveBy(Theme.dp(50));
            return true;
        case Qt.Key_PageUp:
            scroll.moveBy(-page);
            return true;
        case Qt.Key_PageDown:
            scroll.moveBy(page);
            return true;
        case Qt.Key_Home:
            scroll.moveBy(-Number.MAX_SAFE_INTEGER);
            return true;
        case Qt.Key_End:
            root.hold();
            return true;
        }
        return false;
    }
    /// What comes while somebody is at a message does not move it.
    function letGo() {
        if (root.chat.sending)
            scroll.letGo();
    }
    function noteGrowth(row: TranscriptRow): void {
        if (row.streaming)
            root.growingRow = row;
        else if (row === root.growingRow)
            ended.restart();
    }
    function rowAround(item: Item): TranscriptRow {
        let around = item;
        while (around && around !== root) {
            if (around instanceof TranscriptRow)
                return around as TranscriptRow;
            around = around.parent;
        }
        return null;
    }
    Accessible.name: "对话内容"
    Accessible.role: Accessible.List

    onFocusItemChanged: {
        root.focusedRow = root.rowAround(root.focusItem);
        // A click into a long text must not move it.
        const control = root.focusedRow ? root.focusItem as T.Control : null;
        if (control && control.visualFocus) {
            scroll.reveal(control);
            root.letGo();
        }
    }
    Keys.onPressed: event => event.accepted = root.takeKey(event.key, event.modifiers)

    // What depends on it may change the height of the view, and with that what is in sight.
    Binding {
        delayed: true
        property: "endSeen"
        target: root
        value: {
            const last = rows.itemAt(rows.count - 1) as TranscriptRow;
            return scroll.following || (last !== null && last.seen);
        }
    }
    Flickable {
        id: flick

        anchors.fill: parent
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: column.height
        contentWidth: width
        interactive: false
        pixelAligned: true

        T.ScrollBar.vertical: LMPScrollBar {
            id: bar
        }

        TranscriptColumn {
            id: column

            bottomPadding: Theme.dp(16)
            chat: root.chat
            count: rows.count
            actions: MessageActions {}
            copy: OwnMessageCopy {}
            error: MessageError {}
            more: OwnMessageMore {}
            ownMessage: OwnMessage {}
            retry: OwnMessageRetry {}
            twinMessage: TwinMessage {}
            usedChip: UsedChip {}
            focusedRow: root.focusedRow
            moving: scroll.moving
            topPadding: Theme.dp(8)
            width: root.columnWidth
            x: Math.round((root.width - root.columnWidth) / 2)

            onEditRequested: messageId => root.editRequested(messageId)
            onMeasuredAbove: (row, by) => scroll.measuredAbove(row as TranscriptRow, by)
            onMoveAsked: by => scroll.moveBy(by)
            onStreamingChanged: row => root.noteGrowth(row as TranscriptRow)

            Repeater {
                id: rows

                model: root.messages

                delegate: TranscriptRow {}
            }
            AwaitingReply {
                busy: root.chat.awaitingReply && !root.replyGrows
                width: root.columnWidth
            }
        }
    }
    TranscriptScroll {
        id: scroll

        byHand: bar.pressed
        column: column
        rows: rows
        view: flick

        onNearFirst: {
            if (!root.messages.atStart)
                root.messages.fetchOlder();
        }
        onNearLast: {
            if (!root.messages.atEnd)
                root.messages.fetchNewer();
        }
    }
    // Whoever marks a text, or goes through it with the keyboard, wants it to stay.
    Connections {
        function onCursorPositionChanged() {
            root.letGo();
        }

        ignoreUnknownSignals: true
        target: root.focusedRow ? root.focusItem as TextEdit : null
    }
    FindMarks {
        id: marks

        background: Theme.warningSoft
        currentBackground: Theme.warning
        currentInk: Theme.surface
        find: root.chat.find
        ink: Theme.text
        within: column
    }
    // The texts of a row are made when it is in sight.
    Timer {
        id: arrived

        interval: 150

        onTriggered: {
            const top = root.shownRow ? marks.matchTop(root.shownRow) : -1;
            if (top > flick.height - Theme.dp(120))
                scroll.show(root.shownRow, Theme.dp(96) - top);
        }
    }
    Connections {
        function onGoTo(messageId: string) {
            root.show(messageId);
        }

        target: root.chat.find
    }
    Connections {
        function onGrew() {
            scroll.grewBelow();
        }
        function onModelReset() {
            scroll.hold();
        }
        function onRowsInserted(parent: var, first: int, last: int) {
            if (last === root.messages.count - 1 && root.messages.atEnd)
                scroll.grewBelow();
        }

        target: root.messages
    }
    // What the row says of itself at the end comes piece by piece.
    Timer {
        id: ended

        interval: 100

        onTriggered: {
            if (root.growingRow && !root.growingRow.streaming)
                root.replyEnded(root.growingRow.spoken());
        }
    }
    WheelHandler {
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        target: null

        onWheel: event => {
            const distance = event.hasPixelDelta ? event.pixelDelta.y : event.angleDelta.y / 120 * Theme.dp(75);
            scroll.moveBy(-distance);
        }
    }
    DragHandler {
        property real from: 0

        acceptedDevices: PointerDevice.TouchScreen
        target: null
        xAxis.enabled: false

        onActiveChanged: {
            if (active)
                from = flick.contentY;
            else
                flick.flick(0, centroid.velocity.y);
        }
        onActiveTranslationChanged: {
            if (active)
                scroll.moveBy(from - activeTranslation.y - flick.contentY);
        }
    }
    LMPButton {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.dp(12)
        anchors.horizontalCenter: parent.horizontalCenter
        focusPolicy: Qt.TabFocus
        kind: LMPButton.Secondary
        text: scroll.newBelow ? "↓ 新内容" : "↓ 回到最新"
        visible: !scroll.following && (scroll.newBelow || !root.messages.atEnd || root.distanceToEnd > flick.height)

        onClicked: {
            root.hold();
            root.endTaken();
        }
    }
}
