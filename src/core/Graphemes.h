#pragma once

#include <QString>
#include <QTextBoundaryFinder>

namespace lmp {

/// What a person calls the characters of a text: grapheme clusters (Unicode Standard Annex 29), one after another.
///
/// Holds a copy of the text. Any thread.
class Graphemes {
public:
    explicit Graphemes(QString text)
        : m_text(std::move(text))
        , m_finder(QTextBoundaryFinder::Grapheme, m_text) {}
    Graphemes(const Graphemes &) = delete;
    Graphemes &operator=(const Graphemes &) = delete;

    /// The next one, or an empty view at the end. Valid as long as this lives.
    QStringView next() {
        const qsizetype from = m_finder.position();
        const qsizetype to = m_finder.toNextBoundary();
        return to < 0 ? QStringView() : QStringView(m_text).sliced(from, to - from);
    }

    /// The first `count` of `text`, or all of it.
    static QString first(const QString &text, int count) {
        Graphemes graphemes(text);
        qsizetype size = 0;
        while (count-- > 0)
            size += graphemes.next().size();
        return text.first(size);
    }

    /// The last `count` of `text`, or all of it.
    static QString last(const QString &text, int count) {
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
        finder.toEnd();
        while (count-- > 0 && finder.position() > 0)
            finder.toPreviousBoundary();
        return text.sliced(finder.position());
    }

private:
    QString m_text;
    QTextBoundaryFinder m_finder;
};

} // namespace lmp
