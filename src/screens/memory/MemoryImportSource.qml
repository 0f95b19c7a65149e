import QtQuick
import Lumenpair.Kit
import Lumenpair.Memory

/// The first step of an import: a text, pasted, typed or out of a file.
Column {
    id: root

    required property MemoryImportModel importer

    function focusText(): void {
        field.forceActiveFocus();
    }

    spacing: Theme.space12

    LMPText {
        color: Theme.text2
        text: root.importer.readsOnly
        width: parent.width
    }

    LMPSegmented {
        currentIndex: root.importer.source
        label: "从哪里来"
        enabled: !root.importer.scanning
        model: root.importer.sources
        onActivated: index => root.importer.source = index
    }

    LMPTextArea {
        id: field

        errorText: root.importer.errorText
        helpText: root.importer.cutText !== "" ? root.importer.cutText : root.importer.pieces > 0 ? "共 " + root.importer.pieces + " 段，一行算一段。" : "一行算一段。"
        label: root.importer.source === MemoryImportModel.ChatFile ? "聊天记录" : "想让我记住的事"
        maximumLines: 10
        minimumLines: 5
        placeholderText: root.importer.source === MemoryImportModel.ChatFile ? "把导出的聊天记录粘贴到这里，或把文件拖进来" : "一行写一件事"
        readOnly: root.importer.scanning
        width: parent.width
        onTextEdited: root.importer.text = field.text

        Binding on text {
            value: root.importer.text
        }

        // Over the line for the place as well.
        DropArea {
            height: root.height - field.y
            width: parent.width
            enabled: root.importer.source === MemoryImportModel.ChatFile && !root.importer.scanning
            keys: ["text/uri-list"]
            onDropped: drop => {
                for (const url of drop.urls)
                    root.importer.readFile(url.toString());
            }
        }
    }

    Item {
        implicitHeight: place.height
        visible: root.importer.source === MemoryImportModel.ChatFile
        width: parent.width

        LMPTextField {
            id: place

            placeholderText: "文件的路径，也可以把文件拖到这里"
            width: take.x - Theme.space8
            onAccepted: root.importer.readFile(place.text)
        }

        LMPButton {
            id: take

            anchors.right: parent.right
            enabled: place.text.trim() !== "" && !root.importer.scanning
            text: "读取文件"
            onClicked: root.importer.readFile(place.text)
        }
    }

    LMPText {
        color: Theme.text2
        kind: LMPText.Caption
        text: root.importer.costNote
        width: parent.width
    }
}
