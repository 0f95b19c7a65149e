import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// Choosing or changing the handle from the settings.
LMPSheet {
    id: root

    required property HandleModel handle
    readonly property bool saved: root.handle.savedText !== ""

    hasTypedInput: root.handle.input !== "" && !root.saved
    primaryBusy: root.handle.saving
    primaryEnabled: root.handle.canSave || root.handle.saving
    primaryText: root.saved ? "" : "保存"
    secondaryText: root.saved ? "好" : "取消"
    title: "主页名"
    onAboutToShow: {
        root.handle.restart();
        root.handle.load();
    }
    onAccepted: root.handle.save()
    onClosed: root.handle.restart()
    onOpened: form.focusFirst()

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
