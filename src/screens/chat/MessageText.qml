import QtQuick
import Lumenpair.Kit

/// Plain text of a message, to be read, marked and copied.
TextEdit {
    id: root

    activeFocusOnPress: true
    activeFocusOnTab: false
    color: Theme.text
    font.family: Theme.fontFamily
    font.pixelSize: Theme.sp(15)
    readOnly: true
    selectByMouse: true
    selectedTextColor: Theme.onAccent
    selectionColor: Theme.accent
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap

    Keys.onMenuPressed: menu.open()

    LMPReadingMenu {
        id: menu
    }
}
