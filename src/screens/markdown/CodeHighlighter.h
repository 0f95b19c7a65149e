#pragma once

#include <QList>
#include <QString>

namespace lmp {

/// Finds what is worth a colour in a piece of code: no grammar, only words, strings, comments and the like.
///
/// Free of state; any thread. Takes time in proportion to the code, and looks at no more of it than `longest`. Cannot
/// fail: in a language it does not know, nothing has a colour.
struct CodeHighlighter {
    enum class Kind {
        Keyword,
        String,
        Comment,
        Number,
        Name,    ///< key, tag, variable
        Added,   ///< a line of a diff
        Removed, ///< a line of a diff
    };
    struct Span {
        qsizetype start = 0;
        qsizetype length = 0;
        Kind kind = Kind::Keyword;
        bool operator==(const Span &) const = default;
    };

    static constexpr qsizetype longest = 200'000;

    /// The spans of `code`, in order and apart from each other; `language` as it stands after the fence.
    static QList<Span> spans(QStringView code, QStringView language);
};

} // namespace lmp
