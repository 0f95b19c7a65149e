import QtQuick
import Lumenpair.Kit

/// One conversation of the list.
LMPRow {
    id: root

    required property int index
    required property string conversationId
    required property string title
    required property string subtitle
    required property string timeText
    required property bool selected
    required property int unread
    required property bool draft
    required property string waitingText

    Accessible.role: Accessible.ListItem
    trailingText: root.timeText
    twoLine: true
}
