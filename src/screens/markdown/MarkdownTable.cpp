#include "MarkdownTable.h"

#include "MarkdownBlock.h"
#include "MarkdownInline.h"

namespace lmp::MarkdownTable {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype cellsShown = 600;
constexpr qsizetype cellsMore = 3000;
constexpr qsizetype mostRowsMore = 1000;

int rowsOf(qsizetype cells, qsizetype columns, qsizetype most) {
    return int(std::clamp<qsizetype>(cells / std::max<qsizetype>(columns, 1), 1, most));
}

QString alignment(line::Align align) {
    switch (align) {
    case line::Align::Centre:
        return u" align=\"center\""_s;
    case line::Align::Right:
        return u" align=\"right\""_s;
    default:
        return u" align=\"left\""_s;
    }
}

void add(Rows &rows, QStringView line, const QList<line::Align> &columns, QLatin1StringView element) {
    const QList<QString> cells = line::cells(line);
    rows.html += u"<tr>"_s;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        QString cell = cells.value(i);
        if (i == columns.size() - 1 && cells.size() > columns.size())
            cell = cells.sliced(i).join(u" | "_s);
        MarkdownInline made = MarkdownInline::of(cell);
        // The layout has one character of its own before what a cell holds.
        ++rows.length;
        for (MarkdownLink &link : made.links) {
            link.start += rows.length;
            rows.links += std::move(link);
        }
        rows.length += made.length;
        rows.html += u'<' + element + alignment(columns[i]) + u'>' + made.text + u"</"_s + element + u'>';
    }
    rows.html += u"</tr>"_s;
}

} // namespace

int rowsShown(qsizetype columns) {
    return rowsOf(cellsShown, columns, MarkdownLimits::tableRows);
}

int rowsMore(qsizetype columns) {
    return rowsOf(cellsMore, columns, mostRowsMore);
}

void addHeader(Rows &rows, QStringView line, const QList<line::Align> &columns) {
    add(rows, line, columns, "th"_L1);
}

void addRow(Rows &rows, QStringView line, const QList<line::Align> &columns) {
    add(rows, line, columns, "td"_L1);
}

QString table(const QString &rows) {
    return u"<table border=\"1\" cellspacing=\"-1\" cellpadding=\"6\">"_s + rows + u"</table>"_s;
}

} // namespace lmp::MarkdownTable
