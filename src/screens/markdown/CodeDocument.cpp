#include "CodeDocument.h"

#include "CodeHighlighter.h"

#include <QAbstractTextDocumentLayout>
#include <QColor>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>

namespace lmp {

CodeDocument::CodeDocument(QObject *parent)
    : QObject(parent) {
    connect(this, &CodeDocument::textChanged, this, &CodeDocument::show);
    connect(this, &CodeDocument::coloursChanged, this, &CodeDocument::schedule);
}

void CodeDocument::show() {
    QTextDocument *document = m_document ? m_document->textDocument() : nullptr;
    if (!document || (m_code == m_shown && m_lineHeight == m_shownHeight))
        return;
    document->setUndoRedoEnabled(false);
    QTextCursor cursor(document);
    cursor.beginEditBlock();
    if (m_code.startsWith(m_shown)) {
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(m_code.sliced(m_shown.size()));
    } else {
        cursor.select(QTextCursor::Document);
        cursor.insertText(m_code);
    }
    // A line that is added has the height of the one before.
    if (m_lineHeight != m_shownHeight) {
        QTextBlockFormat format;
        format.setLineHeight(m_lineHeight, QTextBlockFormat::FixedHeight);
        cursor.select(QTextCursor::Document);
        cursor.mergeBlockFormat(format);
    }
    cursor.endEditBlock();
    m_shown = m_code;
    m_shownHeight = m_lineHeight;
    schedule();
}

void CodeDocument::schedule() {
    if (m_whole && !std::exchange(m_scheduled, true))
        QMetaObject::invokeMethod(this, &CodeDocument::colour, Qt::QueuedConnection);
}

void CodeDocument::colour() {
    m_scheduled = false;
    QTextDocument *document = m_document ? m_document->textDocument() : nullptr;
    if (!document)
        return;
    const auto spans = CodeHighlighter::spans(m_shown, m_language);
    auto span = spans.begin();
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        const qsizetype begin = block.position(), end = begin + block.length() - 1;
        QList<QTextLayout::FormatRange> ranges;
        while (span != spans.end() && span->start + span->length <= begin)
            ++span;
        for (auto one = span; one != spans.end() && one->start < end; ++one) {
            const qsizetype from = std::max(one->start, begin), to = std::min(one->start + one->length, end);
            QTextCharFormat format;
            format.setForeground(m_colours.value(int(one->kind)).value<QColor>());
            ranges += {int(from - begin), int(to - from), format};
        }
        if (ranges == block.layout()->formats())
            continue;
        block.layout()->setFormats(ranges);
        document->markContentsDirty(block.position(), block.length());
        // The layout says so for what it lays out again by itself, not for this.
        Q_EMIT document->documentLayout()->updateBlock(block);
    }
}

} // namespace lmp
