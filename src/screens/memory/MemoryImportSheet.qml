import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// Brings memories in from a text, in four steps. The text stays until it is written or given up, however the sheet is
/// closed.
LMPSheet {
    id: root

    required property MemoryImportModel importer
    readonly property int step: root.importer.step
    readonly property bool nothing: root.step === MemoryImportModel.Review && root.importer.found === 0

    function begin(): void {
        root.importer.open();
        root.open();
        if (root.step === MemoryImportModel.Text)
            source.focusText();
    }

    function act(): void {
        switch (root.step) {
        case MemoryImportModel.Text:
            root.importer.scan();
            break;
        case MemoryImportModel.Review:
            if (root.nothing)
                root.importer.back();
            else
                root.importer.goToConfirm();
            break;
        case MemoryImportModel.Confirm:
            root.importer.write();
            break;
        default:
            root.close();
        }
    }

    function ready(): bool {
        switch (root.step) {
        case MemoryImportModel.Text:
            return root.importer.pieces > 0;
        case MemoryImportModel.Review:
            return root.nothing || root.importer.picked > 0;
        }
        return true;
    }

    function prepare(row: MemoryPickRow): void {
        row.toggled.connect(() => root.importer.pick(row.candidateId, row.checked));
    }

    primaryBusy: root.importer.scanning || root.importer.writing
    primaryEnabled: root.ready()
    primaryText: [root.importer.scanning ? "正在扫描" : "扫描", root.nothing ? "换一段文本" : "下一步", "写入 " + root.importer.picked + " 条", "好"][root.step]
    secondaryText: root.step === MemoryImportModel.Done ? "" : "关闭"
    title: ["导入记忆", "挑出要记住的", "确认写入", "导入结果"][root.step] + "（" + (root.step + 1) + " / 4）"

    onAccepted: root.act()

    MemoryImportSource {
        id: source

        importer: root.importer
        visible: root.step === MemoryImportModel.Text
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: root.importer.chargeText
        visible: root.step === MemoryImportModel.Review && text !== ""
        width: parent.width
    }

    LMPText {
        kind: LMPText.H3
        text: root.importer.nothingTitle
        visible: root.nothing
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        text: root.nothing ? root.importer.nothingText : root.importer.skippedNote
        visible: root.step === MemoryImportModel.Review
        width: parent.width
    }

    Column {
        spacing: Theme.space8
        visible: root.step === MemoryImportModel.Review && !root.nothing
        width: parent.width

        Repeater {
            delegate: MemoryPickRow {}
            model: root.importer.candidates
            onItemAdded: (index, item) => root.prepare(item as MemoryPickRow)
        }
    }

    LMPText {
        text: "这 " + root.importer.picked + " 条会写进记忆账本，一条一条地写。没选的不动。"
        visible: root.step === MemoryImportModel.Confirm
        width: parent.width
    }

    LMPText {
        color: Theme.text2
        text: root.importer.skippedNote
        visible: root.step === MemoryImportModel.Confirm
        width: parent.width
    }

    LMPBusy {
        running: root.importer.writing
        text: root.importer.progressText
    }

    Repeater {
        delegate: LMPText {
            required property string modelData

            text: modelData
            width: parent ? parent.width : 0
        }
        model: root.importer.results
    }

    LMPText {
        text: root.importer.restText
        visible: text !== ""
        width: parent.width
    }

    LMPButton {
        text: "接着扫后面的"
        visible: root.importer.restText !== ""
        onClicked: root.importer.goOn()
    }

    Flow {
        spacing: Theme.space8
        visible: root.step !== MemoryImportModel.Done && !root.primaryBusy && (root.importer.text !== "" || root.step !== MemoryImportModel.Text)
        width: parent.width

        LMPText {
            color: Theme.text2
            height: Math.max(Theme.control, implicitHeight)
            kind: LMPText.Caption
            text: "关掉再打开，内容还在。"
            verticalAlignment: Text.AlignVCenter
        }

        LMPButton {
            kind: LMPButton.Link
            text: "上一步"
            visible: root.step === MemoryImportModel.Confirm || (root.step === MemoryImportModel.Review && !root.nothing)
            onClicked: root.importer.back()
        }

        LMPButton {
            kind: LMPButton.Link
            text: "放弃这次导入"
            onClicked: question.open()
        }
    }

    LMPDiscardDialog {
        id: question

        onDiscarded: root.importer.discard()
    }
}
