#pragma once

#include "MarkdownBlock.h"
#include "MarkdownLine.h"

namespace lmp {

/// A Markdown table as rich text, written row by row. Free functions; any thread. A row with too few or too many cells
/// is filled up or goes on in its last cell.
namespace MarkdownTable {

/// The rows of a table, one after the other, and the links in them by their place in the table once it is laid out.
struct Rows {
    QString html;
    QList<MarkdownLink> links;
    int length = 0;
};

/// How many rows are shown at first.
int rowsShown(qsizetype columns);
/// How many more one wish for more shows: a table of hundreds of columns takes seconds to lay out long before it has as
/// many rows as another may have.
int rowsMore(qsizetype columns);
void addHeader(Rows &rows, QStringView line, const QList<line::Align> &columns);
void addRow(Rows &rows, QStringView line, const QList<line::Align> &columns);
QString table(const QString &rows);

} // namespace MarkdownTable

} // namespace lmp
