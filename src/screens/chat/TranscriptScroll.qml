import QtQuick
import Lumenpair.Kit

/// Keeps a column of rows of changing heights still under the eyes.
///
/// The view holds on either to the end (`following`) or to the first row in sight. Whatever grows, shrinks, comes or goes
/// above that row moves the view along with it, in the same frame; what happens below never does.
Item {
    id: root

    required property Flickable view
    required property TranscriptColumn column
    required property Repeater rows
    /// Whether a person has hold of the scroll bar.
    property bool byHand: false
    /// The view is about to show the beginning or the end of what is there.
    signal nearFirst
    signal nearLast

    property bool following: true
    property bool newBelow: false
    readonly property real lowest: Math.max(0, root.view.contentHeight - root.view.height)
    readonly property real grip: Theme.dp(32)

    property TranscriptRow anchorRow: null
    /// Where the anchor's top is, seen from the top of the view.
    property real anchorOffset: 0
    property real lastY: 0
    property bool settling: false

    /// Whether the view was moved just now.
    readonly property alias moving: motion.running
    /// Rows came into sight by moving and are not all made yet: for some of a frame's time at once, the others between
    /// two frames as many as there is time for.
    property bool filling: false
    /// In milliseconds since the epoch: until when rows are made at once, and from when they are again.
    property real makeUntil: 0
    property real restUntil: 0
    /// Whether the view was moved far by the last move.
    property bool fast: false
    /// Far once more, just after: of what flies by nothing can be read, and what is ahead of it is gone before it is made.
    property bool flying: false
    /// The rows that may be awake, from the first up to but not with the last; stale when rows have come or gone.
    property int wokenFrom: 0
    property int wokenTo: 0
    property bool wokenStale: true

    function hold() {
        root.following = true;
        root.newBelow = false;
        root.settle();
    }
    /// Puts the top of a row so far below the top of the view, and keeps it there while rows are made.
    function show(row: TranscriptRow, offset: real): void {
        root.following = false;
        root.column.forceLayout();
        root.anchorRow = row;
        root.anchorOffset = offset;
        root.settle();
        root.column.forceLayout();
    }
    /// Moves as a person wishes. Upwards lets go of the end; arriving there takes hold of it again.
    function moveBy(distance: real) {
        // Keys may come faster than frames.
        root.column.forceLayout();
        const before = root.view.contentY;
        root.place(before + distance);
        root.moved(root.view.contentY - before);
    }
    /// Brings an item into view, as when the focus goes there. Of one that is higher than the view, its beginning.
    function reveal(item: Item) {
        const top = item.mapToItem(root.view.contentItem, 0, 0).y - Theme.dp(8);
        const bottom = top + item.height + 2 * Theme.dp(8);
        if (bottom > root.view.contentY + root.view.height)
            root.moveBy(Math.min(top, bottom - root.view.height) - root.view.contentY);
        else if (top < root.view.contentY && bottom - top <= root.view.height)
            root.moveBy(top - root.view.contentY);
    }
    /// Somebody takes hold of what is in sight, which stays where it is.
    function letGo() {
        if (!root.following)
            return;
        root.following = false;
        root.takeAnchor(root.view.contentY);
    }
    /// After the view was moved by a person, however that was done.
    function moved(distance: real) {
        const fast = Math.abs(distance) > root.view.height / 2;
        const flying = root.moving && root.fast && fast;
        motion.restart();
        const toEnd = root.lowest - root.view.contentY;
        root.following = toEnd <= root.grip && !(distance < 0 && toEnd > 0);
        if (toEnd <= root.grip)
            root.newBelow = false;
        // What was in sight before stays where the move has brought it while the rows above it are made: their heights
        // were guesses until now.
        root.takeAnchor(root.view.contentY - distance);
        if (distance < 0 && root.anchorOffset < root.view.height)
            passing.restart();
        else
            root.takeAnchor(root.view.contentY);
        root.fast = fast;
        root.flying = flying;
        root.wake();
        root.column.forceLayout();
    }
    /// A row may be so long that what is read is in the middle of it: what changes above that is above what is in sight.
    function measuredAbove(row: TranscriptRow, by: real): void {
        if (row === root.anchorRow)
            root.anchorOffset -= by;
    }
    /// Something that was not there before came at the end.
    function grewBelow() {
        if (!root.following)
            root.newBelow = true;
    }
    /// Puts the view where it is held, after the rows were laid out.
    function settle() {
        if (!root.anchorRow)
            root.takeAnchor(root.view.contentY);
        if (root.following)
            root.place(root.lowest);
        else if (root.anchorRow)
            root.place(root.anchorRow.y - root.anchorOffset);
        root.wake();
    }
    function place(top: real) {
        root.put(Math.max(0, Math.min(root.lowest, top)));
    }
    function put(top: real) {
        root.settling = true;
        root.view.contentY = Math.round(top);
        root.settling = false;
    }
    /// The first row that ends below `top`, or else the last.
    function rowAt(top: real): int {
        let low = 0;
        let high = root.rows.count - 1;
        while (low < high) {
            const middle = (low + high) >> 1;
            const row = root.rows.itemAt(middle) as TranscriptRow;
            if (row && row.y + row.height <= top)
                low = middle + 1;
            else
                high = middle;
        }
        return low;
    }
    /// Holds on to the first row of which something is in sight when the view is at `top`.
    function takeAnchor(top: real): void {
        root.anchorRow = root.rows.itemAt(root.rowAt(top)) as TranscriptRow;
        root.anchorOffset = root.anchorRow ? root.anchorRow.y - root.view.contentY : 0;
    }
    /// Whether a frame can still wait for a row to be made. One may be half of what a frame has.
    function spares(): bool {
        if (root.moving && root.fast)
            return false;
        const now = Date.now();
        if (now >= root.restUntil) {
            root.makeUntil = now + 4;
            root.restUntil = now + 24;
        }
        return now < root.makeUntil;
    }
    /// Fills the rows near the view and empties those far from it.
    function wake() {
        const top = root.view.contentY;
        const bottom = top + root.view.height;
        const ahead = root.flying ? 0 : root.view.height * 0.6;
        let i = root.wokenStale ? 0 : Math.min(root.wokenFrom, root.rowAt(top - 2 * ahead));
        let from = root.rows.count;
        let to = 0;
        let filling = false;
        for (; i < root.rows.count; ++i) {
            const row = root.rows.itemAt(i) as TranscriptRow;
            if (!row)
                continue;
            const below = row.y - bottom;
            if (below > 2 * ahead && i >= root.wokenTo && !root.wokenStale)
                break;
            const distance = Math.max(top - (row.y + row.height), below);
            const waits = distance < 0 && !row.made && (root.moving || root.filling) && !root.spares();
            row.seen = distance < 0;
            row.urgent = row.seen && !waits;
            filling = filling || waits;
            if (distance < ahead)
                row.awake = true;
            else if (distance > 2 * ahead)
                row.awake = false;
            if (row.awake) {
                from = Math.min(from, i);
                to = i + 1;
            }
        }
        root.wokenFrom = from;
        root.wokenTo = to;
        root.wokenStale = false;
        root.filling = filling;
        if (filling)
            filler.restart();
        if (top < root.view.height)
            root.nearFirst();
        if (root.lowest - top < root.view.height)
            root.nearLast();
    }

    Connections {
        function onContentYChanged() {
            // What the view does of itself, when its content shrinks, is no wish of anybody's.
            if (!root.settling && (root.byHand || root.view.moving))
                root.moved(root.view.contentY - root.lastY);
            root.lastY = root.view.contentY;
        }
        function onContentHeightChanged() {
            root.settle();
        }
        function onHeightChanged() {
            root.settle();
        }

        target: root.view
    }
    Timer {
        id: passing

        interval: 100

        onTriggered: {
            // What is not made yet has a guessed height, and what was made since the last frame an old place.
            root.column.forceLayout();
            if (root.filling)
                passing.restart();
            else
                root.takeAnchor(root.view.contentY);
        }
    }
    Timer {
        id: later

        interval: 0

        onTriggered: root.wake()
    }
    // Not at once: a timer that begins itself again without a pause lets no frame through.
    Timer {
        id: filler

        interval: 16

        onTriggered: root.wake()
    }
    Timer {
        id: motion

        interval: 120

        // What is ahead was passed over.
        onTriggered: {
            root.flying = false;
            root.wake();
        }
    }
    Connections {
        function onItemAdded() {
            root.wokenStale = true;
        }
        function onItemRemoved() {
            root.wokenStale = true;
        }

        target: root.rows
    }
    Connections {
        // In the middle of laying out: the height of the whole is not known yet, so nothing is bounded and nothing filled.
        function onYChanged() {
            if (!root.following)
                root.put(root.anchorRow.y - root.anchorOffset);
            later.restart();
        }

        target: root.anchorRow
    }
}
