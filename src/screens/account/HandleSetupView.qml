import QtQuick
import Lumenpair.Kit

/// Choosing the handle of a new account. It may wait.
FocusScope {
    id: root

    required property SessionModel session

    signal finished()
}
