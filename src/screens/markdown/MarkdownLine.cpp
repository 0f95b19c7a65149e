#include "MarkdownLine.h"

#include <algorithm>

namespace lmp::line {

namespace {

constexpr int longestNumber = 9;
constexpr int mostSpacesAfterBullet = 4;

bool isSpace(QChar c) {
    return c == u' ' || c == u'\t';
}

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

qsizetype run(QStringView text, QChar mark) {
    qsizetype length = 0;
    while (length < text.size() && text[length] == mark)
        ++length;
    return length;
}

/// Backslashes before punctuation are an info string's own.
QString unescaped(QStringView word) {
    QString plain;
    for (qsizetype i = 0; i < word.size(); ++i) {
        if (word[i] == u'\\' && i + 1 < word.size() && word[i + 1].unicode() < 128 && !word[i + 1].isLetterOrNumber())
            ++i;
        plain += word[i];
    }
    return plain;
}

} // namespace

std::optional<Heading> heading(QStringView line) {
    const qsizetype level = run(line, u'#');
    if (level < 1 || level > 6 || (level < line.size() && !isSpace(line[level])))
        return {};
    QStringView text = line.sliced(level).trimmed();
    qsizetype end = text.size();
    while (end > 0 && text[end - 1] == u'#')
        --end;
    if (end == 0 || isSpace(text[end - 1]))
        text = text.first(end).trimmed();
    return Heading{int(level), text};
}

std::optional<Fence> fence(QStringView line) {
    const QChar mark = line.isEmpty() ? QChar() : line.front();
    if (mark != u'`' && mark != u'~')
        return {};
    const qsizetype length = run(line, mark);
    const QStringView info = line.sliced(length).trimmed();
    if (length < 3 || (mark == u'`' && info.contains(u'`')))
        return {};
    const auto end = std::find_if(info.begin(), info.end(), isSpace);
    return Fence{mark, int(std::min<qsizetype>(length, 1000)), unescaped(info.first(end - info.begin()))};
}

bool closes(const Fence &open, QStringView line) {
    const qsizetype length = run(line, open.mark);
    return length >= open.length && line.sliced(length).trimmed().isEmpty();
}

bool isRule(QStringView line) {
    const QChar mark = line.isEmpty() ? QChar() : line.front();
    if (mark != u'-' && mark != u'_' && mark != u'*')
        return false;
    int marks = 0;
    for (const QChar c : line) {
        if (c == mark)
            ++marks;
        else if (!isSpace(c))
            return false;
    }
    return marks >= 3;
}

int underline(QStringView line) {
    const QChar mark = line.isEmpty() ? QChar() : line.front();
    if ((mark != u'=' && mark != u'-') || !line.sliced(run(line, mark)).trimmed().isEmpty())
        return 0;
    return mark == u'=' ? 1 : 2;
}

std::optional<Bullet> bullet(LineCursor line) {
    Bullet bullet;
    const QStringView text = line.bare();
    if (text.isEmpty())
        return {};
    if (const QChar mark = text.front(); mark == u'-' || mark == u'+' || mark == u'*') {
        bullet.mark = mark;
    } else {
        qsizetype digits = 0;
        for (; digits < text.size() && digits < longestNumber && isDigit(text[digits]); ++digits)
            bullet.number = bullet.number * 10 + text[digits].digitValue();
        if (digits == 0 || digits == text.size() || (text[digits] != u'.' && text[digits] != u')'))
            return {};
        bullet.mark = text[digits];
        bullet.width = int(digits) + 1;
    }
    line.take(bullet.width);
    bullet.bare = line.blank();
    if (!bullet.bare && line.indent() == 0)
        return {};
    bullet.spaces = bullet.bare || line.indent() > mostSpacesAfterBullet ? 1 : line.indent();
    return bullet;
}

std::optional<QList<Align>> delimiters(QStringView line) {
    if (!line.contains(u'|') ||
        !std::ranges::all_of(line, [](QChar c) { return c == u'|' || c == u'-' || c == u':' || isSpace(c); }))
        return {};
    QList<Align> columns;
    for (const QString &cell : cells(line)) {
        const bool left = cell.startsWith(u':'), right = cell.size() > 1 && cell.endsWith(u':');
        const QStringView dashes = QStringView(cell).sliced(left).chopped(right);
        if (dashes.isEmpty() || run(dashes, u'-') != dashes.size())
            return {};
        columns += left && right ? Align::Centre : left ? Align::Left : right ? Align::Right : Align::None;
    }
    return columns;
}

QList<QString> cells(QStringView line) {
    line = line.trimmed();
    if (line.startsWith(u'|'))
        line = line.sliced(1);
    QList<QString> found;
    QString cell;
    bool open = true;
    for (qsizetype i = 0; i < line.size(); ++i) {
        open = true;
        if (line[i] == u'\\' && i + 1 < line.size()) {
            // An escaped bar is a bar for whatever the cell holds, code included.
            if (line[i + 1] != u'|')
                cell += line[i];
            cell += line[++i];
        } else if (line[i] == u'|') {
            found += cell.trimmed();
            cell.clear();
            open = false;
        } else {
            cell += line[i];
        }
    }
    if (open)
        found += cell.trimmed();
    return found;
}

bool isUndecided(QStringView line) {
    line = line.trimmed();
    qsizetype digits = 0;
    while (digits < line.size() && isDigit(line[digits]))
        ++digits;
    if (digits > 0 && digits <= longestNumber)
        line = line.sliced(digits);
    const QStringView marks = u"-=|:+*#>`~_.) \t";
    return std::ranges::all_of(line, [&](QChar c) { return marks.contains(c); });
}

} // namespace lmp::line
