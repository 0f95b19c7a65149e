#pragma once

#include "MarkdownLine.h"

namespace lmp {

/// A Markdown table as rich text, written row by row. Free functions; any thread. A row with too few or too many cells
/// is filled up or goes on in its last cell.
namespace MarkdownTable {

/// How many rows are shown at first.
int rowsShown(qsizetype columns);
QString header(QStringView line, const QList<line::Align> &columns);
QString row(QStringView line, const QList<line::Align> &columns);
QString table(const QString &rows);

} // namespace MarkdownTable

} // namespace lmp
