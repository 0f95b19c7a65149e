#pragma once

#include <QString>

namespace lmp {

/// A place in one line of Markdown that knows about columns: tabs reach to the next multiple of four, and a tab may be
/// used up in part.
///
/// A value over text that must outlive it; any thread. Cannot fail: past the end there is nothing.
class LineCursor {
public:
    explicit LineCursor(QStringView line)
        : m_line(line) {}

    /// Columns of white space before the next other character.
    [[nodiscard]] int indent() const;
    /// Whether nothing but white space is left.
    [[nodiscard]] bool blank() const { return bare().isEmpty(); }
    /// The next character that is not white space; null at the end.
    [[nodiscard]] QChar first() const;
    /// What is left after white space.
    [[nodiscard]] QStringView bare() const;
    /// What is left, with the columns of a tab that was used in part as spaces.
    [[nodiscard]] QString rest() const;

    /// Passes up to `columns` of white space.
    void skip(int columns);
    /// Passes white space and then `characters` characters.
    void take(qsizetype characters);

private:
    QStringView m_line;
    qsizetype m_at = 0;
    int m_column = 0;
    int m_left = 0; ///< columns of the tab before m_at that are not used yet
};

} // namespace lmp
