import QtQuick
import Lumenpair.Chat

/// One message as its row knows it: what the model says of it, and how the transcript stands to it.
Item {
    id: root

    required property int index
    required property string messageId
    required property string role
    required property string text
    required property string timeText
    required property int state
    required property string stateText
    required property string errorText
    required property bool retryOffered
    required property bool reopenOffered
    required property string retryText
    required property bool retryBusy
    required property bool streaming
    required property int usedCount
    required property string usedText
    required property string feedback
    required property string chargeText
    required property bool grouped

    /// Kept once known: on the way out the parent goes first.
    property TranscriptColumn column: root.parent as TranscriptColumn
    readonly property ChatModel chat: root.column ? root.column.chat : null
    readonly property bool own: root.role === "user"
    readonly property bool last: root.column !== null && root.index === root.column.count - 1
    readonly property bool focused: root.column !== null && root.column.focusedRow === root
    /// Whether any of it is in sight.
    property bool seen: false
    /// How much of a long text of one's own is laid out; the rest comes on demand, since a megabyte takes longer than a
    /// frame.
    property int shownLength: 6000
    readonly property int hiddenLength: root.own ? Math.max(0, root.text.length - root.shownLength) : 0

    Component.onCompleted: root.column = root.parent as TranscriptColumn

    /// The line under the message: what became of it, what it cost, and when.
    function stateLine(): string {
        let line = root.stateText;
        for (const part of [root.own ? root.retryText : "", root.chargeText === "" ? "" : "花费 " + root.chargeText, root.timeText]) {
            if (part !== "")
                line += (line === "" ? "" : " · ") + part;
        }
        return line;
    }
    /// What a listener hears: who speaks, what, and what became of it. The rest of a long text is read in the text itself.
    function spoken(): string {
        let words = (root.own ? "你说：" : "分身说：") + (root.streaming ? "正在回答" : root.text.slice(0, 2000));
        for (const part of [root.stateText, root.errorText, root.timeText]) {
            if (part !== "")
                words += "。" + part;
        }
        return words;
    }
}
