import QtQuick

/// The list of the messages found; it says which of its rows was clicked.
ListView {
    id: root

    signal taken(int row)
}
