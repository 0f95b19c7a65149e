import QtQuick
import Lumenpair.Chat

/// The column that the rows of the transcript stand in: what each of them needs to know, and where they report to.
Column {
    id: root

    required property ChatModel chat
    required property int count
    /// The row that has the focus somewhere within.
    property Item focusedRow: null
    /// The view was moved just now.
    property bool moving: false

    /// What messages are made of, made once for all of them.
    property Component ownMessage
    property Component twinMessage
    property Component actions
    property Component usedChip
    property Component error
    property Component copy
    property Component retry
    property Component more

    /// The reply in this row begins or ends to grow.
    signal streamingChanged(row: Item)
    /// In this row, above what is in sight, something turned out to be so much higher than was thought.
    signal measuredAbove(row: Item, by: real)
    /// The keyboard went to a place so far below what is in sight.
    signal moveAsked(by: real)
    signal editRequested(messageId: string)
}
