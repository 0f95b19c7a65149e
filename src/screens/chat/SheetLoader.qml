import QtQuick
import Lumenpair.Chat
import Lumenpair.Kit

/// A sheet or a dialog of the chat that is read when it is first wanted, and stays: together they are more than the rest
/// of the page.
Loader {
    id: root

    required property ChatModel chat
    required property string file
    /// What the sheet follows by itself once it is there.
    property bool wanted: false

    function open(): void {
        if (root.status === Loader.Null)
            root.setSource(root.file, {
                chat: root.chat
            });
        else if (root.item)
            (root.item as LMPModal).open();
    }
    function close(): void {
        if (root.item)
            (root.item as LMPModal).close();
    }

    onWantedChanged: {
        if (root.wanted && root.status === Loader.Null)
            root.open();
    }
    // It was read to be opened.
    onLoaded: (root.item as LMPModal).open()
}
