import QtQuick
import Lumenpair.Kit

/// The account's part of the settings.
FocusScope {
    id: root

    required property SessionModel session
}
