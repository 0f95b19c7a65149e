import QtQuick
import Lumenpair.Account
import Lumenpair.Kit

/// The crisis page: numbers of a region for anybody, signed in or not, asked for each time it comes to be seen. It
/// records nothing.
FocusScope {
    id: root

    required property CrisisResourcesModel resources

    signal closed

    function enter(): void {
        if (!root.visible)
            return;
        root.resources.load();
        back.forceActiveFocus();
    }

    Accessible.name: root.resources.entry
    Accessible.role: Accessible.Pane
    Component.onCompleted: root.enter()
    Keys.onEscapePressed: root.closed()
    onVisibleChanged: root.enter()

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }

    Item {
        id: bar

        height: Math.max(Theme.dp(44), back.height + Theme.space8)
        width: parent.width

        LMPButton {
            id: back

            anchors.verticalCenter: parent.verticalCenter
            iconName: "chevron-left"
            kind: LMPButton.Quiet
            text: root.resources.backText
            x: Theme.space12
            onClicked: root.closed()
        }

        LMPSeparator {
            anchors.bottom: parent.bottom
        }
    }

    LMPScrollView {
        id: scroll

        anchors.bottom: parent.bottom
        anchors.top: bar.bottom
        bottomPadding: Theme.space32
        horizontalPadding: Math.max(Theme.space24, Math.round((width - Theme.dp(640)) / 2))
        spacing: Theme.space16
        topPadding: Theme.space24
        width: parent.width

        Column {
            width: parent.width

            LMPText {
                Accessible.role: Accessible.Heading
                kind: LMPText.H1
                text: root.resources.entry
                width: parent.width
            }

            LMPText {
                color: Theme.text2
                text: root.resources.entrySubtitle
                width: parent.width
            }
        }

        LMPComboBox {
            currentIndex: root.resources.regionIndex
            label: "地区"
            model: root.resources.regions
            width: Math.min(Theme.dp(240), parent.width)
            onActivated: index => root.resources.chooseRegion(index)
        }

        LMPBusy {
            running: root.resources.loading
            text: "正在读清单……"
        }

        LMPBanner {
            actionText: "重试"
            text: root.resources.errorText
            tone: LMPBanner.Care
            visible: root.resources.errorText !== ""
            onAction: root.resources.load()
        }

        LMPCard {
            accessibleName: root.resources.heading
            spacing: Theme.space12
            stripe: LMPCard.Care
            visible: root.resources.loaded
            width: parent.width

            LMPText {
                Accessible.role: Accessible.Heading
                kind: LMPText.H3
                text: root.resources.heading
                width: parent.width
            }

            LMPText {
                color: Theme.text2
                text: root.resources.assumedText
                visible: root.resources.assumedText !== ""
                width: parent.width
            }

            LMPText {
                text: root.resources.guidance
                visible: root.resources.guidance !== ""
                width: parent.width
            }

            LMPText {
                kind: LMPText.Strong
                text: root.resources.withoutNumbers
                visible: root.resources.withoutNumbers !== ""
                width: parent.width
            }

            Repeater {
                model: root.resources.numbers

                delegate: CrisisNumberRow {
                    width: parent ? parent.width : 0
                }

                onItemAdded: (index, item) => (item as CrisisNumberRow).dialled.connect(number => root.resources.dial(number))
            }

            LMPText {
                id: undialled

                Accessible.role: Accessible.AlertMessage
                color: Theme.care
                text: root.resources.dialMessage
                visible: root.resources.dialMessage !== ""
                width: parent.width
                onTextChanged: {
                    if (undialled.text !== "")
                        Qt.callLater(scroll.show, undialled); // qmllint disable type
                }
            }
        }

        Column {
            spacing: Theme.space4
            width: parent.width

            Repeater {
                model: root.resources.rules

                delegate: LMPText {
                    required property string modelData

                    color: Theme.text2
                    text: "· " + modelData
                    width: parent ? parent.width : 0
                }
            }
        }
    }
}
