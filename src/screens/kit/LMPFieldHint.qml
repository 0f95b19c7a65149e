import QtQuick

/// What stands in a field as long as nothing else does.
LMPText {
    id: root

    property bool writable: true

    Accessible.ignored: true
    color: root.writable ? Theme.text3 : Theme.disabled
    elide: Text.ElideRight
    wrapMode: Text.NoWrap
}
