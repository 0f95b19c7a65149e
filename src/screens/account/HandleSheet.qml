import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// Choosing or changing the handle from the settings.
LMPSheet {
    id: root

    required property HandleModel handle
    readonly property bool saved: root.handle.savedText !== ""
    /// From when it is asked to open until it is asked to close, or goes with its window.
    property bool looking: false

    function look(looking: bool): void {
        if (root.looking === looking || !root.handle)
            return;
        root.looking = looking;
        if (looking)
            root.handle.open();
        else
            root.handle.close();
    }

    hasTypedInput: root.handle.input !== "" && !root.saved && !root.handle.saving
    primaryBusy: root.handle.saving
    primaryEnabled: root.handle.canSave || root.handle.saving
    primaryText: root.saved ? "" : "保存"
    secondaryText: root.saved ? "好" : "取消"
    title: "主页名"

    Component.onDestruction: root.look(false)
    onAboutToHide: root.look(false)
    onAboutToShow: root.look(true)
    onAccepted: root.handle.save()
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
