import QtQuick
import Lumenpair.Kit

/// The fields of the chosen way of signing in.
FocusScope {
    id: root

    required property SignInModel signIn
}
