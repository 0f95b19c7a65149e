#include "MarkdownTable.h"

#include "MarkdownBlock.h"
#include "MarkdownInline.h"

namespace lmp::MarkdownTable {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype cellsShown = 600;

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

QString written(QStringView line, const QList<line::Align> &columns, QLatin1StringView element) {
    const QList<QString> cells = line::cells(line);
    QString row = u"<tr>"_s;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        QString cell = cells.value(i);
        if (i == columns.size() - 1 && cells.size() > columns.size())
            cell = cells.sliced(i).join(u" | "_s);
        row += u'<' + element + alignment(columns[i]) + u'>' + MarkdownInline::of(cell).text + u"</"_s + element + u'>';
    }
    return row + u"</tr>"_s;
}

} // namespace

int rowsShown(qsizetype columns) {
    return int(std::clamp<qsizetype>(cellsShown / std::max<qsizetype>(columns, 1), 1, MarkdownLimits::tableRows));
}

QString header(QStringView line, const QList<line::Align> &columns) {
    return written(line, columns, "th"_L1);
}

QString row(QStringView line, const QList<line::Align> &columns) {
    return written(line, columns, "td"_L1);
}

QString table(const QString &rows) {
    return u"<table border=\"1\" cellspacing=\"-1\" cellpadding=\"6\">"_s + rows + u"</table>"_s;
}

} // namespace lmp::MarkdownTable
