import QtQuick.Templates as T

/// The tooltip of a button without words; made when the pointer or the keyboard comes to it.
LMPToolTip {
    id: root

    required property T.AbstractButton button

    parent: root.button
    text: root.button.text
    visible: !root.button.down
}
