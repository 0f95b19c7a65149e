import QtQuick
import Lumenpair.Kit

/// The bars at the left of a quote; those that go on from the block above close the gap to it.
Item {
    id: root

    required property MarkdownBlockItem block

    anchors.fill: parent

    Item {
        height: parent.height

        Repeater {
            model: root.block.joinedBars

            delegate: MarkdownQuoteBar {
            }
        }
    }

    Item {
        height: parent.height - y
        y: Theme.dp(root.block.space)

        Repeater {
            model: root.block.bars

            delegate: MarkdownQuoteBar {
            }
        }
    }
}
