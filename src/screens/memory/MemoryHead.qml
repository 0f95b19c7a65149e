import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// What stands over the memories: what has just become of one, and which of them are to be seen.
Column {
    id: root

    required property MemoryLedgerModel ledger
    /// From the field down into the list.
    signal downPressed

    function focusFind(): void {
        if (!root.searchable)
            root.ledger.filter = MemoryLedgerModel.All;
        find.forceActiveFocus(Qt.ShortcutFocusReason);
        find.selectAll();
    }

    readonly property bool searchable: root.ledger.filter === MemoryLedgerModel.All || root.ledger.filter === MemoryLedgerModel.Superseded

    spacing: Theme.space8

    LMPBanner {
        closable: true
        text: root.ledger.inputNotice
        tone: LMPBanner.Warning
        visible: root.ledger.inputNotice !== ""
        onClosed: root.ledger.closeInputNotice()
    }

    LMPBanner {
        closable: true
        text: root.ledger.banner
        tone: root.ledger.bannerFailed ? LMPBanner.Warning : LMPBanner.Info
        visible: root.ledger.banner !== ""
        onClosed: root.ledger.closeBanner()
    }

    // Whatever else is said meanwhile, this stays within reach.
    LMPBanner {
        actionText: "撤销"
        closable: true
        text: root.ledger.undoText
        visible: root.ledger.undoText !== ""
        onAction: root.ledger.undoForget()
        onClosed: root.ledger.closeUndo()
    }

    Flow {
        spacing: Theme.space8
        width: parent.width

        LMPSegmented {
            currentIndex: root.ledger.filter
            label: "看哪些"
            model: ["全部", root.ledger.waiting > 0 ? "等你确认 " + root.ledger.waiting : "等你确认", "已取代", root.ledger.pendingChapters > 0 ? "章节 · " + root.ledger.pendingChapters + " 个待定" : "章节"]
            onActivated: index => root.ledger.filter = index
        }

        LMPComboBox {
            currentIndex: root.ledger.tier
            model: root.ledger.tiers
            visible: root.ledger.filter === MemoryLedgerModel.All
            width: Theme.dp(176)
            onActivated: index => root.ledger.tier = index
        }
    }

    LMPTextField {
        id: find

        iconName: "search"
        placeholderText: "查找记忆"
        visible: root.searchable
        width: parent.width

        Keys.onDownPressed: event => {
            event.accepted = !find.inputMethodComposing;
            if (event.accepted)
                root.downPressed();
        }
        Keys.onEscapePressed: event => {
            event.accepted = find.text !== "" && !find.inputMethodComposing;
            if (event.accepted)
                root.ledger.find("");
        }
        onTextEdited: root.ledger.find(find.text)

        Binding on text {
            value: root.ledger.searchText
        }
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: root.ledger.candidatesNote
        visible: root.ledger.filter === MemoryLedgerModel.Waiting && root.ledger.waiting > 0
        width: parent.width
    }
}
