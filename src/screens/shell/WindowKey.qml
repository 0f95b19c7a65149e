import QtQuick

/// The keys of one command.
Shortcut {
    id: root

    required property bool available
    required property int command
    required property var keys

    enabled: root.available && root.keys.length > 0
    sequences: root.keys
}
