import QtQuick
import Lumenpair.Kit

/// What becomes of accounts that were made earlier.
FocusScope {
    id: root

    required property SessionModel session

    signal finished()
    signal privacyRequested()
}
