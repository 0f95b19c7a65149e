import QtQuick
import Lumenpair.Kit

/// A message's Markdown, block by block. Its text is one stop for Tab, and each of its buttons is one; Up and Down go
/// from block to block, Tab in a text goes from link to link, Enter opens one.
MarkdownColumn {
    id: root

    property real maximumWidth: Theme.dp(760)

    function moveFocus(from: int, by: int): void {
        for (let row = from + by; row >= 0 && row < items.count; row += by) {
            const item = items.itemAt(row) as MarkdownBlockItem;
            if (item && item.takeFocus(by))
                return;
        }
    }

    width: root.maximumWidth

    address: LMPToolTip {
    }
    bars: MarkdownQuoteBars {
    }
    code: MarkdownCode {
    }
    image: MarkdownImage {
    }
    marker: MarkdownMarker {
    }
    ring: LMPFocusRing {
    }
    rule: MarkdownRule {
    }
    table: MarkdownTable {
    }
    text: MarkdownText {
    }

    onLeaving: (row, by) => root.moveFocus(row, by)

    Repeater {
        id: items

        model: root.blocks

        delegate: MarkdownBlockItem {
        }
    }
}
