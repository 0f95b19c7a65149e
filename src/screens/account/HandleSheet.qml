import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// Choosing or changing the handle from the settings.
LMPSheet {
    id: root

    required property HandleModel handle
    readonly property bool saved: root.handle.savedText !== ""

    hasTypedInput: root.handle.input !== "" && !root.saved && !root.handle.saving
    primaryBusy: root.handle.saving
    primaryEnabled: root.handle.canSave || root.handle.saving
    primaryText: root.saved ? "" : "保存"
    secondaryText: root.saved ? "好" : "取消"
    title: "主页名"

    // It may go with its window, and the model before it.
    Component.onDestruction: {
        if (root.held && root.handle)
            root.handle.close();
    }
    onAccepted: root.handle.save()
    onHeldChanged: {
        if (root.held)
            root.handle.open();
        else
            root.handle.close();
    }
    onOpened: form.focusFirst()
    onSavedChanged: {
        // The button that saved is gone.
        if (root.saved)
            root.contentItem.forceActiveFocus();
    }

    HandleForm {
        id: form

        handle: root.handle
        visible: !root.saved
        width: parent.width
        onSubmitted: root.handle.save()
    }

    LMPText {
        text: root.handle.savedText
        visible: root.saved
        width: parent.width
    }
}
