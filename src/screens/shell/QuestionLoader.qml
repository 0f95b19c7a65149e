import QtQuick
import Lumenpair.Shell

/// A question that is read when it is asked, and gone when it is answered.
Loader {
    id: root

    required property WindowScene scene
    property bool asked: false
    property string file

    function follow(): void {
        if (root.asked)
            root.setSource(root.file, {
                scene: root.scene
            });
        else
            root.source = "";
    }

    Component.onCompleted: root.follow()
    onAskedChanged: root.follow()
}
