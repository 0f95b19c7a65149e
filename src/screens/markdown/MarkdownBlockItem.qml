import QtQuick
import Lumenpair.Kit

/// One block with what nests it: the space above, quote bars, bullet, number or task box. Draws nothing itself.
Item {
    id: root

    required property string alt
    required property list<int> bars
    required property bool closed
    required property string code
    required property int columns
    required property int hidden
    required property string imageUrl
    required property int indent
    required property int index
    required property list<int> joinedBars
    required property int kind
    required property string language
    required property int level
    required property int lines
    required property string marker
    required property int space
    required property int task
    required property string text
    required property MarkdownColumn view

    property Item barsItem
    property Item body
    /// The text of the body, if it has any.
    property MarkdownEdit edit
    property Item markerItem

    /// Most blocks have neither bars nor a marker, and no items for them.
    function updateNesting(): void {
        if (root.bars.length + root.joinedBars.length > 0 && !root.barsItem)
            root.barsItem = root.view.bars.createObject(root, {"block": root}) as Item;
        if (root.marker !== "" && !root.markerItem)
            root.markerItem = root.view.marker.createObject(root, {"block": root}) as Item;
    }

    height: Theme.dp(root.space) + (root.body ? root.body.implicitHeight : 0)

    Component.onCompleted: {
        root.body = root.view.bodyOf(root.kind).createObject(root, {"block": root}) as Item;
        root.updateNesting();
    }
    onBarsChanged: {
        if (root.body)
            root.updateNesting();
    }
    onJoinedBarsChanged: {
        if (root.body)
            root.updateNesting();
    }
    onMarkerChanged: {
        if (root.body)
            root.updateNesting();
    }
}
