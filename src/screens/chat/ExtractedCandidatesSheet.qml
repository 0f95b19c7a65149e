import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// What a reading of the chat has found: each is taken or thrown away by itself, and the rest waits in the ledger.
LMPSheet {
    id: root

    required property ChatModel chat
    readonly property ExtractionModel extraction: root.chat.extraction
    readonly property bool wanted: root.extraction.open

    function prepare(row: ExtractedCandidateRow): void {
        row.confirmed.connect(() => root.extraction.confirm(row.candidateId));
        row.dismissed.connect(() => root.extraction.dismiss(row.candidateId));
    }

    primaryText: root.extraction.allHandled ? "好" : ""
    secondaryText: root.extraction.allHandled ? "" : root.extraction.laterText
    title: "记忆候选"

    onAccepted: root.close()
    onClosed: root.extraction.close()
    onWantedChanged: {
        if (root.wanted)
            root.open();
        else
            root.close();
    }

    LMPText {
        color: Theme.text2
        text: root.extraction.candidatesNote
        visible: root.extraction.noneTaken
        width: parent.width
    }

    LMPBanner {
        text: root.extraction.report
        tone: root.extraction.reportFailed ? LMPBanner.Warning : LMPBanner.Info
        visible: root.extraction.report !== ""
    }

    Repeater {
        delegate: ExtractedCandidateRow {}
        model: root.extraction.candidates
        onItemAdded: (index, item) => root.prepare(item as ExtractedCandidateRow)
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: root.extraction.costText
        visible: text !== ""
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: root.extraction.leftText
        visible: text !== ""
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: root.extraction.laterNote
        visible: !root.extraction.allHandled
        width: parent.width
    }
}
