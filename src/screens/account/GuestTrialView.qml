import QtQuick
import Lumenpair.Kit

/// The guest trial as a small chat.
FocusScope {
    id: root

    required property GuestModel guest

    signal registerRequested()
    signal closed()
}
