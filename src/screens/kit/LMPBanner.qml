import QtQuick

/// A sentence across a page, with at most two things to do about it. The actions stand at its right, or below it where
/// there is no room.
Rectangle {
    id: root

    enum Tone {
        Info,
        Success,
        Warning,
        Danger,
        Care
    }

    property string actionText
    property bool closable: false
    property string secondActionText
    property string text
    property int tone: LMPBanner.Info

    signal action
    signal closed
    signal secondAction

    function fillOf(tone: int): color {
        switch (tone) {
        case LMPBanner.Success:
            return Theme.successSoft;
        case LMPBanner.Warning:
            return Theme.warningSoft;
        case LMPBanner.Danger:
            return Theme.dangerSoft;
        case LMPBanner.Care:
            return Theme.careSoft;
        }
        return Theme.sunken;
    }

    /// Most banners of a screen are never seen: what one consists of is made when it first is.
    function fill(): void {
        if (root.visible && body.status === Loader.Null)
            body.setSource("LMPBannerBody.qml", {
                banner: root
            });
    }

    Accessible.name: root.text
    Accessible.role: Accessible.AlertMessage
    color: root.fillOf(root.tone)
    implicitHeight: Math.max(Theme.dp(44), body.implicitHeight)
    implicitWidth: Theme.dp(560)
    radius: Theme.radiusRow
    width: parent ? parent.width : implicitWidth
    Component.onCompleted: root.fill()
    onVisibleChanged: root.fill()

    Loader {
        id: body

        anchors.fill: parent
    }
}
