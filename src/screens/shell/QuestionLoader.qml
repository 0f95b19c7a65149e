import QtQuick
import Lumenpair.Kit
import Lumenpair.Shell

/// A question that is read when it is asked, and gone when it is answered: after it has closed, since it gives the
/// keyboard back as it does.
Loader {
    id: root

    required property WindowScene scene
    property bool asked: false
    property string file

    function follow(): void {
        const question = root.item as LMPModal;
        if (root.asked && !question)
            root.setSource(root.file, {
                scene: root.scene
            });
        else if (!root.asked && question)
            question.close();
    }

    /// Not in the middle of its own signal; and when its window goes, it goes anyway.
    function end(): void {
        if (root)
            Qt.callLater(root.forget); // qmllint disable type
    }

    /// It may have been asked again on its way out.
    function forget(): void {
        root.source = "";
        root.follow();
    }

    Component.onCompleted: root.follow()
    onAskedChanged: root.follow()
    onLoaded: (root.item as LMPModal).closed.connect(root.end)
}
