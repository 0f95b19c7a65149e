import QtQuick
import Lumenpair.Chat

/// The column that the rows of the transcript stand in: what each of them needs to know, and where they report to.
Column {
    id: root

    required property ChatModel chat
    required property int count
    /// The row that has the focus somewhere within.
    property Item focusedRow: null

    /// The reply in this row has become higher.
    signal grew
    /// The reply in this row begins or ends to grow.
    signal streamingChanged(row: Item)
    signal editRequested(messageId: string)
}
