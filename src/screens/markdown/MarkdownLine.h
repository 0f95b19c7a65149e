#pragma once

#include "LineCursor.h"

#include <QList>

#include <optional>

/// What a line of Markdown can be the beginning of. Free functions over what is left of the line; any thread. White
/// space before is the caller's business (four columns of it make code).
namespace lmp::line {

/// The opening of a fenced code block.
struct Fence {
    QChar mark;
    int length = 0;
    QString language; ///< first word after the fence
};

/// "# title": `text` is without the marks.
struct Heading {
    int level = 1;
    QStringView text;
};

/// "- ", "3. " ...: the beginning of a list item.
struct Bullet {
    QChar mark;       ///< '-', '+', '*', or what ends the number: '.' or ')'
    int width = 1;    ///< characters of the mark
    int number = 0;   ///< of an ordered item
    int spaces = 0;   ///< columns up to what follows
    bool bare = true; ///< nothing follows
    [[nodiscard]] bool ordered() const { return mark == u'.' || mark == u')'; }
};

enum class Align { None, Left, Centre, Right };

std::optional<Heading> heading(QStringView line);
std::optional<Fence> fence(QStringView line);
/// Whether `line` ends the block that `open` began.
bool closes(const Fence &open, QStringView line);
bool isRule(QStringView line);
/// The level of the heading that this underline makes of the paragraph above it, else 0.
int underline(QStringView line);
std::optional<Bullet> bullet(LineCursor line);
/// The alignments of the row under a table's header.
std::optional<QList<Align>> delimiters(QStringView line);
/// The cells of a table row as they are written.
QList<QString> cells(QStringView line);
/// Whether nothing has been written yet that tells what the line will be.
bool isUndecided(QStringView line);

} // namespace lmp::line
