import QtQuick
import Lumenpair.Kit

/// Says that a provider made a new account. Takes no room while there is nothing to say.
Item {
    id: root

    required property SessionModel session
}
