import QtQuick

/// A part of the page that is read from `file` while it is wanted, as wide as its place.
Loader {
    id: root

    required property string file
    /// What the part begins with.
    required property var properties
    property bool wanted: false

    function follow(): void {
        if (!root.wanted)
            root.source = "";
        else if (root.status === Loader.Null && root.properties)
            root.setSource(root.file, root.properties);
    }

    // An emptied loader keeps its height.
    visible: root.wanted
    width: parent.width

    // It may be wanted from the beginning, before it knows what the part begins with.
    Component.onCompleted: root.follow()
    onWantedChanged: root.follow()
}
