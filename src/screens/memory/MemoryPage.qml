import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// The ledger of what the twin remembers, in the hands of its owner.
FocusScope {
    id: root

    required property MemoryLedgerModel ledger
    /// At the left of the title, as the shell may need.
    property alias leading: page.leading
    readonly property bool loaded: root.ledger.state === MemoryLedgerModel.Loaded
    readonly property bool empty: root.ledger.emptyTitle !== ""

    function focusFind(): void {
        head.focusFind();
    }

    function beginImport(): void {
        importing.begin();
    }

    /// How many memories there are, where it is memories that are shown, and how many of them these are.
    function countText(): string {
        const shown = root.ledger.filter === MemoryLedgerModel.All || root.ledger.filter === MemoryLedgerModel.Superseded;
        if (!root.loaded || root.ledger.total === 0 || !shown)
            return "";
        const matching = root.ledger.items.count + root.ledger.items.hidden;
        return "共 " + root.ledger.total + " 条" + (matching < root.ledger.total ? "，这里 " + matching + " 条" : "");
    }

    function current(): MemoryCardList {
        switch (root.ledger.filter) {
        case MemoryLedgerModel.Waiting:
            return candidates;
        case MemoryLedgerModel.Chapters:
            return chapters;
        }
        return items;
    }

    /// Another person's ledger is asked for as soon as it is looked at.
    function enter(): void {
        if (root.visible && root.ledger.state === MemoryLedgerModel.Idle)
            root.ledger.open();
    }

    // What is not there yet cannot have the keyboard.
    onLoadedChanged: {
        if (root.loaded && root.activeFocus)
            head.focusFind();
    }

    Component.onCompleted: {
        if (root.visible)
            root.ledger.open();
    }
    onVisibleChanged: {
        if (root.visible)
            root.ledger.open();
    }

    Connections {
        function onChanged(): void {
            root.enter();
        }

        target: root.ledger
    }

    LMPPage {
        id: page

        anchors.fill: parent
        focus: true
        subtitle: root.countText()
        title: "记忆账本"

        actions: Row {
            spacing: Theme.space4

            LMPSpinner {
                anchors.verticalCenter: parent.verticalCenter
                visible: root.ledger.refreshing
            }

            LMPIconButton {
                iconName: "retry"
                text: "重新读取"
                onClicked: root.ledger.reload()
            }

            LMPIconButton {
                iconName: "plus"
                text: "从文本导入"
                onClicked: root.beginImport()
            }
        }

        MemoryHead {
            id: head

            ledger: root.ledger
            visible: root.loaded
            width: Math.min(parent.width - 2 * Theme.space20, Theme.dp(760))
            x: Math.round((parent.width - width) / 2)
            y: Theme.space12
            onDownPressed: root.current().go(0, false)
        }

        Item {
            id: body

            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: head.bottom
            anchors.topMargin: Theme.space4
            visible: root.loaded

            MemoryItemList {
                id: items

                anchors.bottom: more.top
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.top: parent.top
                delegate: MemoryItemCard {}
                ledger: root.ledger
                visible: !root.empty && root.current() === items
                onMenuRequested: (memoryId, frozen, from) => menu.show(memoryId, frozen, from)
            }

            Item {
                id: more

                anchors.bottom: parent.bottom
                height: visible ? expand.height + Theme.space16 : 0
                visible: items.visible && root.ledger.items.hidden > 0
                width: parent.width

                LMPSeparator {}

                LMPButton {
                    id: expand

                    anchors.centerIn: parent
                    text: "再看一些（还有 " + root.ledger.items.hidden + " 条）"
                    onClicked: root.ledger.items.showMore()
                }
            }

            MemoryCardList {
                id: candidates

                Accessible.name: "等你确认"
                anchors.fill: parent
                delegate: MemoryCandidateCard {}
                model: root.ledger.candidates
                ledger: root.ledger
                visible: !root.empty && root.current() === candidates
            }

            MemoryCardList {
                id: chapters

                Accessible.name: "章节"
                anchors.fill: parent
                delegate: ChapterCard {}
                model: root.ledger.chapters
                ledger: root.ledger
                visible: !root.empty && root.current() === chapters
            }

            MemoryEmpty {
                anchors.horizontalCenter: parent.horizontalCenter
                ledger: root.ledger
                visible: root.empty
                y: Math.max(Theme.space24, Math.round((parent.height - height) * 0.35))
                onImportWanted: root.beginImport()
            }
        }

        LMPBusy {
            anchors.centerIn: parent
            running: root.ledger.state === MemoryLedgerModel.Loading
            text: "正在读取记忆…"
        }

        LMPErrorState {
            anchors.centerIn: parent
            text: root.ledger.errorText
            visible: root.ledger.state === MemoryLedgerModel.Failed
            onAction: root.ledger.open()
        }
    }

    MemoryMenu {
        id: menu

        ledger: root.ledger
    }

    MemoryCorrectionSheet {
        correction: root.ledger.correction
    }

    MemoryHistorySheet {
        history: root.ledger.history
    }

    MemoryImportSheet {
        id: importing

        importer: root.ledger.importer
    }
}
